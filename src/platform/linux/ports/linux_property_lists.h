#pragma once

#include "platform/property_list.h"

namespace lumora::platform::linux_backend {

/// Reads by libplist, behind checks that keep hostile input away from it, and writes XML. Stateless.
class LinuxPropertyLists final : public PropertyListSerialization {
  public:
    Result<PropertyListValue> parse(std::string_view bytes) override;
    Result<std::string> serializeXml(const PropertyListValue& value) override;
};

} // namespace lumora::platform::linux_backend
