#pragma once

#include "platform/linux/ports/child_process.h"

#include <string>

namespace lumora::platform::linux_backend {

/// Starts the desktop's default handler of an address with the given environment and the null device as its streams.
/// Any thread. False when no handler is known or it cannot be started.
[[nodiscard]] bool openInDefaultHandler(const std::string& url, const Environment& environment);

} // namespace lumora::platform::linux_backend
