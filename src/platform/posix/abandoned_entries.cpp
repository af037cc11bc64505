#include "platform/posix/abandoned_entries.h"

#include "platform/posix/tree_removal.h"
#include "platform/posix/unique_fd.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <vector>

namespace lumora::platform::posix_backend {

namespace {

bool lock(int descriptor) { return ::flock(descriptor, LOCK_EX | LOCK_NB) == 0; }

std::vector<std::string> namesIn(const std::string& folder, bool (*isOurs)(std::string_view name)) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.c_str()), &::closedir);
    while (const dirent* entry = entries ? ::readdir(entries.get()) : nullptr) {
        if (isOurs(entry->d_name))
            names.emplace_back(entry->d_name);
    }
    return names;
}

/// The entry, locked, if it is a file or folder of this user and nobody else holds it.
UniqueFd takeAbandoned(const std::string& path) {
    struct stat status {};
    // Looked at before it is opened: opening a device may do something.
    if (::lstat(path.c_str(), &status) != 0 || status.st_uid != ::geteuid() ||
        !(S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)))
        return {};
    UniqueFd entry(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!entry || !lock(entry.get()))
        return {};
    return entry;
}

} // namespace

bool holdNewEntry(int descriptor, const std::string& path) {
    if (!lock(descriptor) && errno == EWOULDBLOCK)
        return false;
    struct stat held {};
    struct stat named {};
    return ::fstat(descriptor, &held) == 0 && ::lstat(path.c_str(), &named) == 0 &&
           held.st_dev == named.st_dev && held.st_ino == named.st_ino;
}

void removeAbandonedEntries(const std::string& folder, bool (*isOurs)(std::string_view name)) {
    for (const std::string& name : namesIn(folder, isOurs)) {
        const std::string path = folder + '/' + name;
        if (const UniqueFd taken = takeAbandoned(path))
            static_cast<void>(removeTree(path));
    }
}

} // namespace lumora::platform::posix_backend
