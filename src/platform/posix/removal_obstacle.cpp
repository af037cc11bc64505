#include "platform/posix/removal_obstacle.h"

#include "platform/posix/tree_removal.h"
#include "platform/posix/unique_fd.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <vector>

namespace lumora::platform::posix_backend {

namespace {

/// What keeps the entry in its place whatever its folder allows: something mounted upon it, or a protection. An errno,
/// 0 for nothing.
#ifdef __APPLE__
int holdOn(int parent, const std::string&, const struct stat& status) {
    constexpr unsigned kProtecting =
        UF_IMMUTABLE | UF_APPEND | SF_IMMUTABLE | SF_APPEND | SF_RESTRICTED | SF_NOUNLINK;
    if ((status.st_flags & kProtecting) != 0)
        return EPERM;
    struct stat around {};
    // Of the outermost entry only the renaming tells.
    const bool isInner = parent != AT_FDCWD && ::fstat(parent, &around) == 0;
    return isInner && around.st_dev != status.st_dev ? EBUSY : 0;
}
#else
int holdOn(int parent, const std::string& name, const struct stat&) {
    struct statx status {};
    if (::statx(parent, name.c_str(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, 0, &status) != 0)
        return errno;
    if ((status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0)
        return EBUSY;
    return (status.stx_attributes & (STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND)) != 0 ? EPERM : 0;
}
#endif

/// @param keeper  nobody, or whose entries alone may be removed from the folder around
int obstacleAt(int parent, const std::string& name, std::optional<uid_t> keeper) {
    struct stat status {};
    if (::fstatat(parent, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return errno;
    if (const int hold = holdOn(parent, name, status); hold != 0)
        return hold;
    if (keeper && status.st_uid != *keeper)
        return EPERM;
    if (!S_ISDIR(status.st_mode))
        return 0;

    // The user's own folders can be opened up, whatever their modes say.
    const uid_t user = ::geteuid();
    const bool isOwn = user == 0 || status.st_uid == user;
    const UniqueFd folder(::openat(parent, name.c_str(), kOpenFolder));
    if (!folder)
        return isOwn && errno == EACCES ? 0 : errno;
    const std::vector<std::string> names = namesIn(folder.get());
    if (!names.empty() && !isOwn && ::faccessat(folder.get(), ".", W_OK | X_OK, AT_EACCESS) != 0)
        return errno;
    const bool isSticky = (status.st_mode & S_ISVTX) != 0 && !isOwn;
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

} // namespace lumora::platform::posix_backend
