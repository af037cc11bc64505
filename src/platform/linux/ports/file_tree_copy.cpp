#include "platform/linux/ports/file_tree_copy.h"

#include "platform/linux/ports/file_attributes.h"
#include "platform/linux/ports/file_contents.h"
#include "platform/posix/posix_error.h"
#include "platform/posix/temporary_sibling.h"
#include "platform/posix/unique_fd.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <memory>
#include <string_view>

namespace lumora::platform::linux_backend {

namespace {

using posix_backend::posixError;
using posix_backend::TemporarySibling;
using posix_backend::UniqueFd;

/// A place in an open folder; `path` is for messages only.
struct Entry {
    int folder;
    std::string name;
    std::string path;

    [[nodiscard]] Entry inside(int openFolder, std::string_view inner) const {
        return {openFolder, std::string(inner), path + '/' + std::string(inner)};
    }
};

Result<void> copyEntry(const Entry& source, const Entry& destination);

Result<std::string> linkTarget(const Entry& link) {
    std::string target(PATH_MAX, '\0');
    const ssize_t length = ::readlinkat(link.folder, link.name.c_str(), target.data(), target.size());
    if (length < 0)
        return posixError(errno, link.path);
    target.resize(static_cast<std::size_t>(length));
    return target;
}

Result<void> copyLinkTimes(const struct stat& status, const Entry& destination) {
    const timespec times[2] = {status.st_atim, status.st_mtim};
    if (::utimensat(destination.folder, destination.name.c_str(), times, AT_SYMLINK_NOFOLLOW) != 0)
        return posixError(errno, destination.path);
    return {};
}

Result<void> copyLink(const Entry& source, const Entry& destination, const struct stat& status) {
    const auto target = linkTarget(source);
    if (!target)
        return target.error();
    if (::symlinkat(target.value().c_str(), destination.folder, destination.name.c_str()) != 0)
        return posixError(errno, destination.path);
    return copyLinkTimes(status, destination);
}

/// In a folder that everybody writes, as /tmp, the modes that a lone file's copy does not get: others who could write
/// into it would change what its owner reads, or runs, later.
mode_t withheldModes(const std::string& destination) {
    const std::size_t slash = destination.rfind('/');
    struct stat status {};
    const auto folder = slash == std::string::npos ? std::string(".") : destination.substr(0, slash + 1);
    const bool isShared = ::stat(folder.c_str(), &status) == 0 && (status.st_mode & S_IWOTH) != 0;
    return isShared ? S_IWGRP | S_IWOTH : 0;
}

/// Copies into a new file, open as `to`.
Result<void> fillFile(const Entry& source, int to, const std::string& destinationPath, mode_t withheld = 0) {
    const UniqueFd from(
        ::openat(source.folder, source.name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!from || ::fstat(from.get(), &status) != 0)
        return posixError(errno, source.path);
    status.st_mode &= ~withheld;
    if (const int error = copyContents(from.get(), to); error != 0)
        return posixError(error, destinationPath);
    const int error = copyAttributes(from.get(), to, status);
    return error == 0 ? Result<void>() : posixError(error, destinationPath);
}

/// Copies into a new folder, open as `to`. The copy's own mode comes last: a read-only folder could not be filled.
Result<void> fillFolder(const Entry& source, int to, const Entry& destination) {
    const UniqueFd from(
        ::openat(source.folder, source.name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!from || ::fstat(from.get(), &status) != 0)
        return posixError(errno, source.path);
    const int listing = ::openat(from.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(listing >= 0 ? ::fdopendir(listing) : nullptr,
                                                      &::closedir);
    if (!entries)
        return posixError(errno, source.path);

    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(entries.get());
        if (entry == nullptr && errno != 0)
            return posixError(errno, source.path);
        if (entry == nullptr)
            break;
        const std::string_view name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        if (auto copied = copyEntry(source.inside(from.get(), name), destination.inside(to, name)); !copied)
            return copied;
    }
    const int error = copyAttributes(from.get(), to, status);
    return error == 0 ? Result<void>() : posixError(error, destination.path);
}

Result<void> copyFile(const Entry& source, const Entry& destination) {
    const UniqueFd to(::openat(destination.folder, destination.name.c_str(),
                               O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    return to ? fillFile(source, to.get(), destination.path) : posixError(errno, destination.path);
}

Result<void> copyFolder(const Entry& source, const Entry& destination) {
    if (::mkdirat(destination.folder, destination.name.c_str(), S_IRWXU) != 0)
        return posixError(errno, destination.path);
    const UniqueFd to(::openat(destination.folder, destination.name.c_str(),
                               O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    return to ? fillFolder(source, to.get(), destination) : posixError(errno, destination.path);
}

Result<void> copyEntry(const Entry& source, const Entry& destination) {
    struct stat status {};
    if (::fstatat(source.folder, source.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return posixError(errno, source.path);
    switch (status.st_mode & S_IFMT) {
    case S_IFLNK:
        return copyLink(source, destination, status);
    case S_IFREG:
        return copyFile(source, destination);
    case S_IFDIR:
        return copyFolder(source, destination);
    default:
        return posixError(ENOTSUP, source.path);
    }
}

} // namespace

Result<void> copyTree(const std::string& sourcePath, TemporarySibling& aside) {
    const Entry source{AT_FDCWD, sourcePath, sourcePath};
    struct stat status {};
    if (::lstat(sourcePath.c_str(), &status) != 0)
        return posixError(errno, sourcePath);
    if (S_ISLNK(status.st_mode)) {
        const auto target = linkTarget(source);
        if (!target)
            return target.error();
        if (const int error = aside.createLink(target.value()); error != 0)
            return posixError(error, aside.path());
        return copyLinkTimes(status, {AT_FDCWD, aside.path(), aside.path()});
    }
    if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode))
        return posixError(ENOTSUP, sourcePath);
    const int to = S_ISDIR(status.st_mode) ? aside.createFolder() : aside.createFile(S_IRUSR | S_IWUSR);
    if (to < 0)
        return posixError(errno, aside.path());
    return S_ISDIR(status.st_mode) ? fillFolder(source, to, {AT_FDCWD, aside.path(), aside.path()})
                                   : fillFile(source, to, aside.path(), withheldModes(aside.path()));
}

} // namespace lumora::platform::linux_backend
