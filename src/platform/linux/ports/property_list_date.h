#pragma once

#include "platform/property_list.h"

#include <optional>
#include <string>

namespace lumora::platform::linux_backend {

/// "2026-11-21T09:41:07Z", the XML form, which has no fractions. The year is one of 1 to 9999.
[[nodiscard]] std::string xmlDate(PropertyListDate date);

/// The inverse; absent when the text is no such date.
[[nodiscard]] std::optional<PropertyListDate> dateFromXml(const std::string& text);

} // namespace lumora::platform::linux_backend
