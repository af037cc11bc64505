#pragma once

#include "platform/posix/unique_fd.h"

#include <string>

namespace lumora::platform::linux_backend {

/// Holds an exclusive lock among processes, on a file that stays when the lock is gone. A process that holds it for
/// longer than a few seconds counts as hung: the lock is then not got. Where the file system has no locks, everyone gets it.
class FileLock {
  public:
    explicit FileLock(const std::string& path);

    [[nodiscard]] bool isHeld() const { return static_cast<bool>(file_); }

  private:
    posix_backend::UniqueFd file_; ///< closing it unlocks
};

} // namespace lumora::platform::linux_backend
