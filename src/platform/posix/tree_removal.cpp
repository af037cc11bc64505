#include "platform/posix/tree_removal.h"

#include "platform/posix/posix_error.h"
#include "platform/posix/unique_fd.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <string_view>
#include <vector>

namespace lumora::platform::posix_backend {

namespace {

UniqueFd openFolder(int parent, const std::string& name) {
    UniqueFd folder(::openat(parent, name.c_str(), kOpenFolder));
    if (folder || errno != EACCES)
        return folder;
    // Its own mode keeps even its owner out.
    if (::fchmodat(parent, name.c_str(), S_IRWXU, AT_SYMLINK_NOFOLLOW) != 0)
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

std::string withoutSlashesAtItsEnd(std::string path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back();
    return path;
}

} // namespace

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

Result<void> removeTree(const std::string& path) {
    const int error = removeEntry(AT_FDCWD, withoutSlashesAtItsEnd(path));
    return error == 0 ? Result<void>() : posixError(error, path);
}

} // namespace lumora::platform::posix_backend
