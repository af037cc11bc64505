#pragma once

#include "platform/menu.h"

#include <memory>

namespace lumora::platform::macos_backend {

/// Gives the application its menu bar. What acts on the page or the window reaches it along the responder chain.
/// @return the menu bar as the core sees it
[[nodiscard]] std::unique_ptr<Menu> installMainMenu();

} // namespace lumora::platform::macos_backend
