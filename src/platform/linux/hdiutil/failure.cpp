#include "platform/linux/hdiutil/failure.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace lumora::platform::linux_backend {

void throwErrno(std::string_view what) {
    const int number = errno;
    throw DiskImageFailure(fmt::format("{}: {}", what, std::generic_category().message(number)), number);
}

std::string printable(std::string_view text) {
    std::string shown(text);
    std::replace_if(
        shown.begin(), shown.end(),
        [](char character) {
            const auto byte = static_cast<unsigned char>(character);
            return byte < 0x20 || byte == 0x7f;
        },
        '?');
    return shown;
}

} // namespace lumora::platform::linux_backend
