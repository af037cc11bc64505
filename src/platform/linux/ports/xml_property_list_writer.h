#pragma once

#include "platform/property_list.h"

#include <string>

namespace lumora::platform::linux_backend {

/// The value as an XML 1.0 property list that any strict reader takes back unchanged. It is one that XML carries: see
/// faultAsXml.
[[nodiscard]] std::string xmlPropertyList(const PropertyListValue& value);

} // namespace lumora::platform::linux_backend
