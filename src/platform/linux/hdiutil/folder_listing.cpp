#include "platform/linux/hdiutil/folder_listing.h"

#include "platform/linux/hdiutil/failure.h"
#include "platform/posix/unique_fd.h"

#include <dirent.h>
#include <fcntl.h>

#include <cerrno>
#include <memory>
#include <string_view>

namespace lumora::platform::linux_backend {
namespace {

using posix_backend::UniqueFd;

struct CloseDirectory {
    void operator()(DIR* stream) const noexcept { ::closedir(stream); }
};

} // namespace

std::vector<std::string> listFolder(int folder) {
    // Opened anew, for a descriptor's reading position is shared by its duplicates.
    UniqueFd listed(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!listed)
        throwErrno("cannot list a folder");
    const std::unique_ptr<DIR, CloseDirectory> stream(::fdopendir(listed.get()));
    if (!stream)
        throwErrno("cannot list a folder");
    static_cast<void>(listed.release()); // the stream owns it now

    std::vector<std::string> names;
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(stream.get());
        if (entry == nullptr)
            break;
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            names.emplace_back(name);
    }
    if (errno != 0)
        throwErrno("cannot list a folder");
    return names;
}

} // namespace lumora::platform::linux_backend
