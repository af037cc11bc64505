#pragma once

#include <string>
#include <string_view>

namespace lumora::platform::linux_backend {

/// Whether the bytes are UTF-8 made of the characters that XML 1.0 allows.
[[nodiscard]] bool isXmlText(std::string_view text);

/// The text with what would be markup, or changed by a reader's line-end rule, written as entities.
[[nodiscard]] std::string escapedForXml(std::string_view text);

/// How deep the elements that contain others (dict, array) of an XML property list nest, comments and CDATA left out.
[[nodiscard]] std::size_t nestingOfXmlPropertyList(std::string_view xml);

} // namespace lumora::platform::linux_backend
