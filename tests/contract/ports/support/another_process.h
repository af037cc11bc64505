#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace lumora::contract {

/// The suite's own program, run once more: for what only a second process sees, and for what a process has from its start.
/// Never by a mere fork, which some systems' frameworks do not survive.
class AnotherProcess {
  public:
    /// @param arguments  its first one a word, by which the suite's `asAnotherProcess` knows what to do
    /// @param program    a copy of the program in another place; empty: the program itself
    explicit AnotherProcess(const std::vector<std::string>& arguments, const std::string& program = {});
    ~AnotherProcess();
    AnotherProcess(const AnotherProcess&) = delete;
    AnotherProcess& operator=(const AnotherProcess&) = delete;

    /// The next line of its standard output, waited for; what there was of one when it has ended.
    [[nodiscard]] std::string nextLine();

    /// Waits for its end: all further output, and how it ended if not well.
    [[nodiscard]] std::string output();

  private:
    bool readMore();

    pid_t process_ = -1;
    int output_ = -1;
    std::string received_;
};

/// The running program, without links in its path.
[[nodiscard]] const std::string& thisProgram();

/// The whole of `main`: a program whose first argument is a word is another process of its suite, which a deadline ends;
/// any other runs the suite's tests.
int runContract(int argc, char** argv);

/// What the suite does in another process. Each suite with one defines it. @return the exit status
int asAnotherProcess(const std::vector<std::string>& arguments);

} // namespace lumora::contract
