#pragma once

#include <string>
#include <string_view>

namespace lumora::platform::linux_backend {

/// The text with what would be markup, or changed by a reader's line-end rule, written as entities.
[[nodiscard]] std::string escapedForXml(std::string_view text);

/// How deep the elements that contain others (dict, array) of an XML property list nest, comments and CDATA left out.
[[nodiscard]] std::size_t nestingOfXmlPropertyList(std::string_view xml);

} // namespace lumora::platform::linux_backend
