#include "platform/linux/hdiutil/failure.h"

#include <fmt/format.h>
#include <utf8proc.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace lumora::platform::linux_backend {
namespace {

bool isValidUtf8(std::string_view text) {
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    auto left = static_cast<utf8proc_ssize_t>(text.size());
    while (left > 0) {
        utf8proc_int32_t codepoint = 0;
        const auto used = utf8proc_iterate(bytes, left, &codepoint);
        if (used <= 0)
            return false;
        bytes += used;
        left -= used;
    }
    return true;
}

} // namespace

void throwErrno(std::string_view what) {
    const int number = errno;
    throw DiskImageFailure(fmt::format("{}: {}", what, std::generic_category().message(number)), number);
}

std::string printable(std::string_view text) {
    std::string shown(text);
    const bool isUtf8 = isValidUtf8(text);
    std::replace_if(
        shown.begin(), shown.end(),
        [isUtf8](char character) {
            const auto byte = static_cast<unsigned char>(character);
            return byte < 0x20 || byte == 0x7f || (byte >= 0x80 && !isUtf8);
        },
        '?');
    return shown;
}

} // namespace lumora::platform::linux_backend
