#include "platform/linux/ports/file_tree.h"
#include "platform/posix/tree_removal.h"
#include "platform/posix/unique_fd.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <optional>
#include <vector>

namespace lumora::platform::linux_backend {

namespace {

using posix_backend::kOpenFolder;
using posix_backend::namesIn;
using posix_backend::UniqueFd;

/// Mounted upon, or protected by the administrator.
bool isHeldInPlace(const struct statx& status) {
    constexpr std::uint64_t kHolding = STATX_ATTR_MOUNT_ROOT | STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND;
    return (status.stx_attributes & kHolding) != 0;
}

/// @param keeper  nobody, or whose entries alone may be removed from the folder around
int obstacleAt(int parent, const std::string& name, std::optional<uid_t> keeper) {
    struct statx status {};
    if (::statx(parent, name.c_str(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_BASIC_STATS, &status) != 0)
        return errno;
    if (isHeldInPlace(status))
        return (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0 ? EBUSY : EPERM;
    if (keeper && status.stx_uid != *keeper)
        return EPERM;
    if (!S_ISDIR(status.stx_mode))
        return 0;

    // The user's own folders can be opened up, whatever their modes say.
    const uid_t user = ::geteuid();
    const bool isOwn = user == 0 || status.stx_uid == user;
    const UniqueFd folder(::openat(parent, name.c_str(), kOpenFolder));
    if (!folder)
        return isOwn ? 0 : errno;
    const std::vector<std::string> names = namesIn(folder.get());
    if (!names.empty() && !isOwn && ::faccessat(folder.get(), ".", W_OK | X_OK, AT_EACCESS) != 0)
        return errno;
    const bool isSticky = (status.stx_mode & S_ISVTX) != 0 && !isOwn;
    for (const std::string& inner : names) {
        if (const int obstacle =
                obstacleAt(folder.get(), inner, isSticky ? std::optional(user) : std::nullopt);
            obstacle != 0)
            return obstacle;
    }
    return 0;
}

} // namespace

int findRemovalObstacle(const std::string& path) { return obstacleAt(AT_FDCWD, path, std::nullopt); }

} // namespace lumora::platform::linux_backend
