#pragma once

#include <string>
#include <string_view>

namespace lumora::platform::linux_backend {

/// The text with what would be markup, or changed by a reader's line-end rule, written as entities.
[[nodiscard]] std::string escapedForXml(std::string_view text);

/// How many elements that contain others (dict, array) an XML property list has at most: what merely looks like one, in a
/// comment, say, counts too. So no list nests deeper, however its markup is read.
[[nodiscard]] std::size_t containersInXmlPropertyList(std::string_view xml);

} // namespace lumora::platform::linux_backend
