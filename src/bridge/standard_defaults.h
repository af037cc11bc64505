#pragma once

#include "platform/property_list.h"
#include "platform/result.h"

#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

namespace lumora {

/// How the bridge uses the layered preferences. Main thread.
namespace standard_defaults {

/// The value as a string: text as it is, numbers in decimal, booleans as "1" or "0". Other types count as absent.
[[nodiscard]] std::optional<std::string> stringForKey(const std::string& key);

/// One group of writes, in order, ended by one synchronisation.
void store(std::initializer_list<std::pair<const char*, platform::PropertyListValue>> entries);

/// Clears the key: an empty string is stored, which also hides what lower levels hold.
void clear(const std::string& key);

} // namespace standard_defaults

} // namespace lumora
