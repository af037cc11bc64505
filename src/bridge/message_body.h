#pragma once

#include <string>
#include <string_view>

namespace lumora {

/// Whether a string body has bytes that can be decoded at all: well-formed UTF-8. A page's string may hold half a
/// surrogate pair, which has none; such a message is ignored without a line.
[[nodiscard]] bool isDecodable(std::string_view body);

/// A string body as text to keep and to show: U+FFFD in the place of what has no UTF-8.
[[nodiscard]] std::string wellFormed(std::string_view body);

} // namespace lumora
