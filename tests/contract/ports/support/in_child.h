#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

namespace lumora::contract {

/// A body that runs in a forked process, for what changes its process: streams, user, descriptor limits. Fork before
/// the test starts threads.
class Child {
  public:
    explicit Child(const std::function<std::string()>& body);

    /// What the body reports: empty text is success. A crash, a non-zero exit and a body that outlives the deadline are
    /// reported as such. Once.
    [[nodiscard]] std::string report();

  private:
    pid_t process_ = -1;
    int reportEnd_ = -1;
};

/// Runs the body in a forked process to its end.
[[nodiscard]] std::string inChild(const std::function<std::string()>& body);

/// Runs the body in a forked process that is killed when it writes the first byte into a file. Empty when it was killed
/// so, else what became of it.
[[nodiscard]] std::string killedAtItsFirstByte(const std::function<void()>& body);

/// Runs the body as an ordinary user: in a forked process only for the superuser, whose rights would hide what a test looks
/// for. Some systems' frameworks are of little use after a fork.
[[nodiscard]] std::string asOrdinaryUser(const std::function<std::string()>& body);

} // namespace lumora::contract
