#pragma once

namespace lumora::platform::macos_backend {

/// Gives the application its menu bar. What acts on the page or the window reaches it along the responder chain.
void installMainMenu();

} // namespace lumora::platform::macos_backend
