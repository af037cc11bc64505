#pragma once

#include "processes.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace lumora::testing {

/// Runs the real `hdiutil` where /Volumes is the test's own, in a mount namespace whose root the test has put together.
/// Nothing on the machine changes. As an ordinary user it takes a user namespace as well, which a kernel may refuse.
class PrivateWorld {
  public:
    struct NoVolumes {};
    struct SmallVolumes {
        std::size_t bytes; ///< each run begins with an empty file system of this size
    };

    /// /Volumes is the folder `volumes`, which the test can look into.
    PrivateWorld(const std::filesystem::path& scratch, const std::filesystem::path& volumes);
    PrivateWorld(const std::filesystem::path& scratch, NoVolumes noVolumes);
    PrivateWorld(const std::filesystem::path& scratch, SmallVolumes smallVolumes);

    [[nodiscard]] bool isPossible() const { return obstacle_.empty(); }
    [[nodiscard]] const std::string& obstacle() const { return obstacle_; }

    [[nodiscard]] Outcome hdiutil(const std::vector<std::string>& arguments) const;
    [[nodiscard]] Outcome run(const std::string& program, const std::vector<std::string>& arguments) const;

  private:
    void probe();
    void enter() const;

    std::filesystem::path root_;
    std::optional<std::filesystem::path> volumes_;
    std::size_t volumesBytes_ = 0;
    std::string obstacle_;
};

} // namespace lumora::testing
