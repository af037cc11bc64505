#include "platform/linux/ports/volumes.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>
#include <utility>

namespace lumora::platform::linux_backend {

namespace {

using posix_backend::UniqueFd;

// The tool holds a volume alone for the moment of a renaming only: who does so for longer is not waited for.
constexpr std::chrono::seconds kPatience{10};
constexpr std::chrono::milliseconds kRetry{5};

/// The volume that the path leads into; empty when it leads elsewhere.
std::string volumeOf(const std::string& path, const std::string& volumes) {
    const std::string folder = volumes + '/';
    if (!path.starts_with(folder))
        return {};
    const std::size_t name = path.find_first_not_of('/', folder.size());
    return name == std::string::npos ? std::string() : path.substr(0, path.find('/', name));
}

bool isSameFolder(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

/// Whether the folder, now locked, is the one that was looked at, and stands there still.
bool stillStands(const UniqueFd& folder, const struct stat& seen, const std::string& volume) {
    struct stat held {};
    struct stat named {};
    return ::fstat(folder.get(), &held) == 0 && ::lstat(volume.c_str(), &named) == 0 &&
           isSameFolder(held, seen) && isSameFolder(held, named);
}

} // namespace

VolumeReading::VolumeReading(const std::string& path, const std::string& volumes) {
    const std::string volume = volumeOf(path, volumes);
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (!volume.empty()) {
        struct stat status {};
        if (::lstat(volume.c_str(), &status) != 0)
            obstacle_ = errno;
        else if (status.st_uid != 0 && status.st_uid != ::geteuid())
            obstacle_ = EPERM;
        if (obstacle_ != 0)
            return;

        UniqueFd folder(::open(volume.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!folder && errno != ENOENT)
            return; // a link, or closed to reading
        const bool isLocked = folder && ::flock(folder.get(), LOCK_SH | LOCK_NB) == 0;
        if (folder && !isLocked && errno != EWOULDBLOCK)
            return;
        if (isLocked && stillStands(folder, status, volume)) {
            hold_ = std::move(folder);
            return;
        }
        if (std::chrono::steady_clock::now() > deadline)
            return;
        std::this_thread::sleep_for(kRetry);
    }
}

} // namespace lumora::platform::linux_backend
