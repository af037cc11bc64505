#include "platform/posix/posix_files.h"

#include "platform/posix/folder_hold.h"
#include "platform/posix/posix_error.h"
#include "platform/posix/removal_obstacle.h"
#include "platform/posix/temporary_sibling.h"
#include "platform/posix/tree_removal.h"
#include "platform/posix/unique_fd.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace lumora::platform::posix_backend {

namespace {

constexpr mode_t kDefaultFileMode = 0666; // the umask takes its part

/// Opens an existing regular file, never waiting for the other end of a pipe.
Result<UniqueFd> openRegularFile(const std::string& path, int flags) {
    UniqueFd file(::open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    struct stat status {};
    if (!file || ::fstat(file.get(), &status) != 0)
        return posixError(errno, path);
    if (!S_ISREG(status.st_mode))
        return posixError(S_ISDIR(status.st_mode) ? EISDIR : EINVAL, path);
    return file;
}

/// Whether the entry may not be taken out of its folder; other errors say only that renaming is not the way.
bool isRefusal(int error) { return error == EACCES || error == EPERM || error == EBUSY || error == EROFS; }

Result<void> removeFolder(const std::string& path) {
    if (::rmdir(path.c_str()) == 0)
        return {};
    if (const int obstacle = findRemovalObstacle(path); obstacle != 0)
        return posixError(obstacle, path);
    TemporarySibling aside(path);
    if (const int error = aside.takeAway(); error != 0)
        return isRefusal(error) ? posixError(error, path) : removeTree(path);
    Result<void> removed = removeTree(aside.path());
    if (!removed)
        aside.giveBack();
    return removed;
}

} // namespace

int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

Result<std::string> PosixFiles::resolved(const std::string& path) const {
    if (path.find('\0') != std::string::npos)
        return posixError(EINVAL, "a path that holds a NUL");
    return path;
}

Result<void> PosixFiles::createFile(const std::string& path, std::string_view contents,
                                    const FileAttributes& attributes) {
    const auto place = resolved(path);
    if (!place)
        return place.error();
    const auto mode = static_cast<mode_t>(attributes.posixPermissions.value_or(kDefaultFileMode));
    TemporarySibling aside(place.value());
    const int file = aside.createFile(mode);
    if (file < 0)
        return posixError(errno, path);
    int error = 0;
    if (attributes.posixPermissions && ::fchmod(file, mode) != 0) // the umask does not count
        error = errno;
    if (error == 0 && attributes.completeProtection)
        protectCompletely(aside.path());
    if (error == 0)
        error = writeAll(file, contents);
    if (error == 0)
        error = aside.place();
    return error == 0 ? Result<void>() : posixError(error, path);
}

Result<std::string> PosixFiles::readFile(const std::string& path) {
    const auto place = resolved(path);
    if (!place)
        return place.error();
    const auto file = openRegularFile(place.value(), O_RDONLY);
    if (!file)
        return file.error();
    std::string contents;
    std::array<char, 65536> chunk{};
    for (;;) {
        const ssize_t count = ::read(file.value().get(), chunk.data(), chunk.size());
        if (count > 0)
            contents.append(chunk.data(), static_cast<std::size_t>(count));
        else if (count == 0)
            return contents;
        else if (errno != EINTR)
            return posixError(errno, path);
    }
}

Result<void> PosixFiles::overwriteFile(const std::string& path, std::string_view contents) {
    const auto place = resolved(path);
    if (!place)
        return place.error();
    const auto file = openRegularFile(place.value(), O_WRONLY);
    if (!file)
        return file.error();
    if (::ftruncate(file.value().get(), 0) != 0)
        return posixError(errno, path);
    const int error = writeAll(file.value().get(), contents);
    return error == 0 ? Result<void>() : posixError(error, path);
}

Result<std::uint64_t> PosixFiles::fileSize(const std::string& path) {
    const auto place = resolved(path);
    if (!place)
        return place.error();
    struct stat status {};
    if (::stat(place.value().c_str(), &status) != 0)
        return posixError(errno, path);
    return static_cast<std::uint64_t>(status.st_size);
}

Result<void> PosixFiles::removeItem(const std::string& path) {
    const auto place = resolved(path);
    if (!place)
        return place.error();
    std::string entry = place.value();
    while (entry.size() > 1 && entry.ends_with('/')) // a link that ends in a slash is the link itself
        entry.pop_back();
    struct stat status {};
    const bool isRealFolder = ::lstat(entry.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    return isRealFolder ? removeFolder(entry) : removeTree(entry);
}

std::shared_ptr<void> PosixFiles::holdFolder(const std::string& path) {
    const auto place = resolved(path);
    return place ? posix_backend::holdFolder(place.value()) : nullptr;
}

} // namespace lumora::platform::posix_backend
