#pragma once

#include "platform/property_list.h"
#include "platform/result.h"
#include "support/json.h"

#include <optional>
#include <string>
#include <vector>

namespace lumora {

/// What stands for an absent value in log lines, files and addresses.
inline constexpr const char* kNullPlaceholder = "(null)";

/// How a value reads where a format has "%@". Absent values read as the null placeholder.
std::string render(const std::optional<std::string>& text);
std::string render(const std::vector<std::string>& list); ///< as a JSON list
std::string render(const std::optional<Json>& value);     ///< objects and lists as compact JSON text
std::string render(const platform::Error& error);         ///< domain, code and text
std::string render(const std::optional<platform::Error>& error);
std::string render(const platform::PropertyListValue& value); ///< text as it is, numbers in decimal, 1 or 0

} // namespace lumora
