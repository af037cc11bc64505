#pragma once

#include "platform/menu.h"

#include <memory>

namespace lumora::platform::macos_backend {

/// The port over the application's menu bar; null while there is none. The port object of an entry that has been given a
/// target lives as long as the entry.
[[nodiscard]] std::unique_ptr<Menu> menuBar();

} // namespace lumora::platform::macos_backend
