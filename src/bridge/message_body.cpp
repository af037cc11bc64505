#include "bridge/message_body.h"

#include <utf8proc.h>

namespace lumora {

bool isDecodable(std::string_view body) {
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(body.data());
    auto left = static_cast<utf8proc_ssize_t>(body.size());
    while (left > 0) {
        utf8proc_int32_t codePoint = 0;
        const auto length = utf8proc_iterate(bytes, left, &codePoint);
        if (length <= 0)
            return false;
        bytes += length;
        left -= length;
    }
    return true;
}

} // namespace lumora
