#pragma once

#include <cstddef>

namespace lumora::platform::linux_backend {

/// What a property list from outside may ask of our memory. Real ones stay far below.
inline constexpr std::size_t kMaximumPropertyListBytes = 16U << 20U;

/// How many lists and dictionaries an XML property list may hold. All of them may lie one in the other before the library
/// has read them, and it gives back such a tree by recursion.
inline constexpr std::size_t kMaximumXmlContainers = 8192;

} // namespace lumora::platform::linux_backend
