#include "platform/linux/hdiutil/tree_removal.h"

#include "platform/linux/hdiutil/failure.h"
#include "platform/linux/hdiutil/folder_listing.h"
#include "platform/posix/unique_fd.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace lumora::platform::linux_backend {
namespace {

using posix_backend::UniqueFd;

[[noreturn]] void cannotRemove(const std::string& name) { throwErrno("cannot remove " + printable(name)); }

UniqueFd openFolder(int parent, const std::string& name) {
    constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    UniqueFd folder(::openat(parent, name.c_str(), kFlags));
    if (!folder && errno == EACCES && ::fchmodat(parent, name.c_str(), S_IRWXU, AT_SYMLINK_NOFOLLOW) == 0)
        folder = UniqueFd(::openat(parent, name.c_str(), kFlags));
    return folder;
}

void removeEntry(int parent, const std::string& name, dev_t fileSystem) {
    if (::unlinkat(parent, name.c_str(), 0) == 0 || errno == ENOENT)
        return;
    if (errno != EISDIR)
        cannotRemove(name);
    const UniqueFd folder = openFolder(parent, name);
    if (!folder) {
        if (errno == ENOENT)
            return;
        cannotRemove(name);
    }
    struct stat attributes {};
    if (::fstat(folder.get(), &attributes) != 0)
        cannotRemove(name);
    if (attributes.st_dev != fileSystem) {
        throw DiskImageFailure("cannot remove " + printable(name) + ": another file system is mounted there",
                               EBUSY);
    }
    if ((attributes.st_mode & S_IRWXU) != S_IRWXU && ::fchmod(folder.get(), S_IRWXU) != 0)
        cannotRemove(name);
    for (const std::string& child : listFolder(folder.get()))
        removeEntry(folder.get(), child, fileSystem);
    if (::unlinkat(parent, name.c_str(), AT_REMOVEDIR) != 0 && errno != ENOENT)
        cannotRemove(name);
}

} // namespace

void removeTree(int parent, const std::string& name) {
    struct stat attributes {};
    if (::fstat(parent, &attributes) != 0)
        cannotRemove(name);
    removeEntry(parent, name, attributes.st_dev);
}

} // namespace lumora::platform::linux_backend
