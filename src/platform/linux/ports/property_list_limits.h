#pragma once

#include <cstddef>

namespace lumora::platform::linux_backend {

/// What a property list from outside may ask of us. Real ones stay far below; a hostile one must exhaust neither the
/// stack (the library's decoder and every walk over a value recurse) nor the memory.
inline constexpr std::size_t kMaximumNesting = 256;
inline constexpr std::size_t kMaximumPropertyListBytes = 16U << 20U;

} // namespace lumora::platform::linux_backend
