#pragma once

#include "platform/property_list.h"
#include "platform/web_view.h"

#include <map>
#include <optional>
#include <string>

namespace lumora {

/// The window's title before anyone gives it another.
inline constexpr const char* kFirstWindowTitle = "Ovra Tessel Lumora";

/// What the preferences answer for a list of keys: one entry a key, absent values included.
using PreferenceValues = std::map<std::string, std::optional<platform::PropertyListValue>>;

/// The stored title, as the preferences answer for it.
[[nodiscard]] PreferenceValues storedTitleValues();

/// Gives the window the stored title. With a window the entry must be text: anything else, absence included, is a
/// programming error that stops the process. Only an answer without the entry titles the window by default and stores
/// that title.
/// @param window nullptr while the view stands in none: then an entry changes nothing.
void showStoredTitle(const PreferenceValues& stored, platform::Window* window);

} // namespace lumora
