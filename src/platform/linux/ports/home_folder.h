#pragma once

#include <string>

namespace lumora::platform::linux_backend {

/// Presents the home folder as the default volume of the application's own platform does: an existing entry is found
/// whatever its letter case, the exact spelling first; a new one keeps the case it is created with. Paths outside the
/// home folder stay as they are. Stateless after construction: any thread.
class HomeFolder {
  public:
    /// The user's: $HOME, or the user database's when that is unset.
    HomeFolder();
    explicit HomeFolder(std::string path);

    /// Without a trailing slash.
    [[nodiscard]] const std::string& path() const { return path_; }

    /// The path by which the kernel finds what the given one names.
    [[nodiscard]] std::string resolve(const std::string& path) const;

  private:
    std::string path_;
};

} // namespace lumora::platform::linux_backend
