#pragma once

namespace lumora::platform::linux_backend {

/// Keeps the web view from TLS below 1.2, which the engine would still speak with an old or malicious server. The HTTP
/// sessions have the same limit. Before GTK starts and before any thread, like the rendering's choice.
void refuseOldTls();

} // namespace lumora::platform::linux_backend
