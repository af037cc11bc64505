#pragma once

namespace lumora {

/// The preference in which the window's title is remembered between runs.
inline constexpr const char* kWindowTitleKey = "WindowTitle";

/// The title where none is stored, or is stored as anything but text.
inline constexpr const char* kDefaultWindowTitle = "Ovra Tessel - Lumora";

} // namespace lumora
