#pragma once

#include "platform/property_list.h"

namespace lumora::platform::macos_backend {

/// `NSPropertyListSerialization`.
class FoundationPropertyLists final : public PropertyListSerialization {
  public:
    Result<PropertyListValue> parse(std::string_view bytes) override;
    Result<std::string> serializeXml(const PropertyListValue& value) override;
};

} // namespace lumora::platform::macos_backend
