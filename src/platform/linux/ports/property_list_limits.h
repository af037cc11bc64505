#pragma once

#include <cstddef>

namespace lumora::platform::linux_backend {

/// What a property list from outside may ask of our memory. Real ones stay far below.
inline constexpr std::size_t kMaximumPropertyListBytes = 16U << 20U;

} // namespace lumora::platform::linux_backend
