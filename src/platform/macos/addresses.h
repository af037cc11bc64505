#pragma once

#include "platform/macos/foundation/text.h"

namespace lumora::platform::macos_backend {

/// The address as the core or the engine writes it. Never nil: what does not parse strictly is for the receiver to refuse.
inline NSURL* addressFrom(const std::string& text) {
    return [NSURL URLWithDataRepresentation:[NSData dataWithBytes:text.data() length:text.size()] relativeToURL:nil];
}

} // namespace lumora::platform::macos_backend
