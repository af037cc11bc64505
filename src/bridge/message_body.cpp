#include "bridge/message_body.h"

#include <utf8proc.h>

#include <cstddef>

namespace lumora {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD"; // U+FFFD

/// How many bytes the first code point takes; 0 when it is none.
std::size_t firstCodePointLength(std::string_view text) {
    utf8proc_int32_t codePoint = 0;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                         static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
    return length <= 0 ? 0 : static_cast<std::size_t>(length);
}

bool beginsWithHalfASurrogatePair(std::string_view text) {
    return text.size() >= 3 && text[0] == '\xED' && (text[1] & '\xE0') == '\xA0';
}

} // namespace

bool isDecodable(std::string_view body) {
    while (!body.empty()) {
        const auto length = firstCodePointLength(body);
        if (length == 0)
            return false;
        body.remove_prefix(length);
    }
    return true;
}

std::string wellFormed(std::string_view body) {
    std::string text;
    text.reserve(body.size());
    while (!body.empty()) {
        const auto length = firstCodePointLength(body);
        text += length == 0 ? kReplacement : body.substr(0, length);
        const std::size_t replaced = beginsWithHalfASurrogatePair(body) ? 3 : 1;
        body.remove_prefix(length == 0 ? replaced : length);
    }
    return text;
}

} // namespace lumora
