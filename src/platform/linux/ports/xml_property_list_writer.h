#pragma once

#include "platform/property_list.h"

namespace lumora::platform::linux_backend {

/// The value as an XML 1.0 property list that any strict reader takes back unchanged. An error for what the format
/// cannot carry: characters outside XML's, dates outside the years 1 to 9999, nesting beyond the limit.
Result<std::string> writeXmlPropertyList(const PropertyListValue& value);

} // namespace lumora::platform::linux_backend
