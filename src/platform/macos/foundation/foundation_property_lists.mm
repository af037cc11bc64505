#include "platform/macos/foundation/foundation_property_lists.h"

#include "platform/macos/foundation/objc_exceptions.h"
#include "platform/macos/foundation/property_list_values.h"
#include "support/property_lists.h"

namespace lumora::platform::macos_backend {

Result<PropertyListValue> FoundationPropertyLists::parse(std::string_view bytes) {
    return atPort([&]() -> Result<PropertyListValue> {
        NSError* error = [NSError errorWithDomain:NSCocoaErrorDomain
                                             code:NSPropertyListReadCorruptError
                                         userInfo:nil];
        NSPropertyListFormat format = NSPropertyListOpenStepFormat;
        id list = [NSPropertyListSerialization propertyListWithData:dataOf(bytes)
                                                            options:NSPropertyListImmutable
                                                             format:&format
                                                              error:&error];
        auto value = valueFrom(list);
        if (!value || format == NSPropertyListOpenStepFormat) // to that old form nearly any text is a string
            return errorOf(error);
        return std::move(*value);
    });
}

Result<std::string> FoundationPropertyLists::serializeXml(const PropertyListValue& value) {
    return atPort([&]() -> Result<std::string> {
        if (auto fault = faultAsXml(value))
            return std::move(*fault);
        NSError* error = nil;
        NSData* data = [NSPropertyListSerialization dataWithPropertyList:objectFrom(value)
                                                                  format:NSPropertyListXMLFormat_v1_0
                                                                 options:0
                                                                   error:&error];
        if (data == nil)
            return errorOf(error);
        return bytesOf(data);
    });
}

} // namespace lumora::platform::macos_backend
