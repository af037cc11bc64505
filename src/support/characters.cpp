#include "support/characters.h"

#include <utf8proc.h>

namespace lumora {

namespace {

/// One step of decoding: the code point (U+FFFD for an invalid byte) and how many bytes it took.
struct CodePoint {
    utf8proc_int32_t value;
    std::size_t length;
};

CodePoint firstCodePoint(std::string_view text) {
    utf8proc_int32_t value = -1;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                         static_cast<utf8proc_ssize_t>(text.size()), &value);
    if (length <= 0)
        return {0xFFFD, 1};
    return {value, static_cast<std::size_t>(length)};
}

bool isWhiteSpace(utf8proc_int32_t value) {
    if ((value >= 0x09 && value <= 0x0D) || value == 0x85)
        return true;
    switch (utf8proc_category(value)) {
    case UTF8PROC_CATEGORY_ZS:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
        return true;
    default:
        return false;
    }
}

bool isHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

/// How many bytes the first user-perceived character of a text that is not empty takes.
std::size_t firstCharacterLength(std::string_view text) {
    auto previous = firstCodePoint(text);
    auto length = previous.length;
    utf8proc_int32_t state = 0;
    while (length < text.size()) {
        const auto current = firstCodePoint(text.substr(length));
        if (utf8proc_grapheme_break_stateful(previous.value, current.value, &state))
            break;
        length += current.length;
        previous = current;
    }
    return length;
}

} // namespace

std::size_t countCharacters(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count)
        text.remove_prefix(firstCharacterLength(text));
    return count;
}

std::string_view characterAt(std::string_view text, std::size_t index) {
    for (; !text.empty() && index > 0; --index)
        text.remove_prefix(firstCharacterLength(text));
    return text.empty() ? text : text.substr(0, firstCharacterLength(text));
}

std::string utf8OfUtf16(std::u16string_view units) {
    std::string text;
    text.reserve(units.size());
    for (std::size_t at = 0; at < units.size(); ++at) {
        utf8proc_int32_t value = units[at];
        if (at + 1 < units.size() && isHighSurrogate(units[at]) && isLowSurrogate(units[at + 1]))
            value = 0x10000 + ((value - 0xD800) << 10) + (units[++at] - 0xDC00);
        utf8proc_uint8_t bytes[4];
        const auto length = utf8proc_encode_char(value, bytes);
        text.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
    }
    return text;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty()) {
        const auto first = firstCodePoint(text);
        if (!isWhiteSpace(first.value))
            break;
        text.remove_prefix(first.length);
    }
    std::size_t end = 0; // just behind the last character that is not white space
    for (std::size_t at = 0; at < text.size();) {
        const auto current = firstCodePoint(text.substr(at));
        at += current.length;
        if (!isWhiteSpace(current.value))
            end = at;
    }
    return text.substr(0, end);
}

} // namespace lumora
