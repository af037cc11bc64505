#include "platform/linux/ports/file_attributes.h"

#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>
#include <vector>

namespace lumora::platform::linux_backend {

namespace {

constexpr mode_t kPermissions = 07777;

// Both calls tell the size first and may find it changed at the second; ERANGE asks again.
template <class Call>
std::vector<char> sized(Call call) {
    for (;;) {
        const ssize_t size = call(nullptr, 0);
        if (size <= 0)
            return {};
        std::vector<char> bytes(static_cast<std::size_t>(size));
        const ssize_t filled = call(bytes.data(), bytes.size());
        if (filled >= 0) {
            bytes.resize(static_cast<std::size_t>(filled));
            return bytes;
        }
        if (errno != ERANGE)
            return {};
    }
}

int copyExtendedAttributes(int from, int to) {
    const std::vector<char> names =
        sized([&](char* data, std::size_t size) { return ::flistxattr(from, data, size); });
    for (std::size_t at = 0; at < names.size();) {
        const std::string name(names.data() + at);
        at += name.size() + 1;
        const std::vector<char> value =
            sized([&](char* data, std::size_t size) { return ::fgetxattr(from, name.c_str(), data, size); });
        if (::fsetxattr(to, name.c_str(), value.data(), value.size(), 0) == 0)
            continue;
        // Only the user's own attributes are promised, and only where the file system keeps any: the others (labels,
        // capabilities) may be the administrator's alone to set.
        if (std::string_view(name).starts_with("user.") && errno != ENOTSUP)
            return errno;
    }
    return 0;
}

} // namespace

int copyAttributes(int from, int to, const struct stat& status) {
    if (const int error = copyExtendedAttributes(from, to); error != 0)
        return error;
    mode_t mode = status.st_mode & kPermissions;
    if (status.st_uid != ::geteuid())
        mode &= ~static_cast<mode_t>(
            S_ISUID | S_ISGID); // the copy is ours: it must not run others' files with our rights
    if (::fchmod(to, mode) != 0)
        return errno;
    const timespec times[2] = {status.st_atim, status.st_mtim};
    return ::futimens(to, times) == 0 ? 0 : errno;
}

} // namespace lumora::platform::linux_backend
