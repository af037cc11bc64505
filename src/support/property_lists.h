#pragma once

#include "platform/property_list.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace lumora {

/// How deep a property list may nest, read or written. Real ones stay far below; a hostile one must not exhaust the stack
/// (every walk over a value recurses).
inline constexpr std::size_t kMaximumNesting = 256;

/// Whether the bytes are UTF-8 made of the characters that XML 1.0 allows.
[[nodiscard]] bool isXmlText(std::string_view text);

/// Why no XML property list carries the value; absent when one does, whole: not characters outside XML's, nor dates outside
/// the years 1 to 9999, nor nesting beyond the limit.
[[nodiscard]] std::optional<platform::Error> faultAsXml(const platform::PropertyListValue& value);

} // namespace lumora
