#include "platform/linux/ports/file_tree.h"
#include "platform/posix/posix_error.h"
#include "platform/posix/unique_fd.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace lumora::platform::linux_backend {

namespace {

using posix_backend::posixError;
using posix_backend::UniqueFd;

constexpr int kOpenFolder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

/// The names in an open folder; consumes the descriptor's position, not the descriptor.
std::vector<std::string> namesIn(int folder) {
    std::vector<std::string> names;
    const int own = ::openat(folder, ".", kOpenFolder);
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(own >= 0 ? ::fdopendir(own) : nullptr, &::closedir);
    if (!entries)
        return names;
    while (const dirent* entry = ::readdir(entries.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            names.emplace_back(name);
    }
    return names;
}

UniqueFd openFolder(int parent, const std::string& name) {
    UniqueFd folder(::openat(parent, name.c_str(), kOpenFolder));
    if (folder || errno != EACCES)
        return folder;
    // Its own mode keeps even its owner out. The path-only descriptor makes sure that no link is followed.
    const UniqueFd handle(::openat(parent, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!handle || ::chmod(("/proc/self/fd/" + std::to_string(handle.get())).c_str(), S_IRWXU) != 0)
        return folder;
    return UniqueFd(::openat(parent, name.c_str(), kOpenFolder));
}

int removeEntry(int parent, const std::string& name) {
    if (::unlinkat(parent, name.c_str(), 0) == 0)
        return 0;
    struct stat status {};
    const int error = errno;
    if (::fstatat(parent, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISDIR(status.st_mode))
        return error;

    const UniqueFd folder = openFolder(parent, name);
    if (!folder)
        return errno;
    const std::vector<std::string> names = namesIn(folder.get());
    if (!names.empty() && (status.st_mode & S_IRWXU) != S_IRWXU)
        ::fchmod(folder.get(),
                 S_IRWXU); // removing entries needs to write in it; a failure shows at the first one
    for (const std::string& inner : names) {
        if (const int inside = removeEntry(folder.get(), inner); inside != 0)
            return inside;
    }
    return ::unlinkat(parent, name.c_str(), AT_REMOVEDIR) == 0 ? 0 : errno;
}

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

std::string withoutSlashesAtItsEnd(std::string path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back();
    return path;
}

} // namespace

int findRemovalObstacle(const std::string& path) {
    return obstacleAt(AT_FDCWD, withoutSlashesAtItsEnd(path), std::nullopt);
}

Result<void> removeTree(const std::string& path) {
    const int error = removeEntry(AT_FDCWD, withoutSlashesAtItsEnd(path));
    return error == 0 ? Result<void>() : posixError(error, path);
}

} // namespace lumora::platform::linux_backend
