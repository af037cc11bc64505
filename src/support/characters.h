#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace lumora {

/// How many user-perceived characters (extended grapheme clusters, UAX #29) a UTF-8 text has. Invalid bytes count
/// as one character each.
[[nodiscard]] std::size_t countCharacters(std::string_view text);

/// The user-perceived character at an index counted from 0; empty when the text is shorter.
[[nodiscard]] std::string_view characterAt(std::string_view text, std::size_t index);

/// UTF-16 as UTF-8. Half a surrogate pair becomes three bytes as though it were a character: nothing is lost, and whoever
/// asks for well-formed UTF-8 finds out.
[[nodiscard]] std::string utf8OfUtf16(std::u16string_view units);

/// The text without white space and line breaks at both ends (Unicode White_Space).
[[nodiscard]] std::string_view trimmed(std::string_view text);

} // namespace lumora
