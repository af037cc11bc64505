#pragma once

#include <string_view>

namespace lumora::platform::linux_backend {

inline constexpr std::string_view kBinaryPropertyListMagic = "bplist00";

/// Whether a binary property list may be given to the library's decoder: its tables lie inside the bytes, every object
/// is of a known kind, references neither form a circle nor nest or multiply (each use of a shared object is decoded
/// again) beyond the limits.
[[nodiscard]] bool isDecodableBinaryPropertyList(std::string_view bytes);

} // namespace lumora::platform::linux_backend
