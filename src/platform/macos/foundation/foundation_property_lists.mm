#include "platform/macos/foundation/foundation_property_lists.h"

#include "platform/macos/foundation/objc_exceptions.h"
#include "platform/macos/foundation/property_list_values.h"

namespace lumora::platform::macos_backend {

namespace {

NSError* errorWithCode(NSInteger code) {
    return [NSError errorWithDomain:NSCocoaErrorDomain code:code userInfo:nil];
}

} // namespace

Result<PropertyListValue> FoundationPropertyLists::parse(std::string_view bytes) {
    return atPort([&]() -> Result<PropertyListValue> {
        NSError* error = errorWithCode(NSPropertyListReadCorruptError);
        NSPropertyListFormat format = NSPropertyListOpenStepFormat;
        id list = [NSPropertyListSerialization propertyListWithData:[NSData dataWithBytes:bytes.data()
                                                                                   length:bytes.size()]
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
        NSError* error = errorWithCode(NSPropertyListWriteInvalidError);
        id list = objectFrom(value, Writable::asXml);
        if (list == nil)
            return errorOf(error);
        NSData* data = [NSPropertyListSerialization dataWithPropertyList:list
                                                                  format:NSPropertyListXMLFormat_v1_0
                                                                 options:0
                                                                   error:&error];
        if (data == nil)
            return errorOf(error);
        return std::string(static_cast<const char*>(data.bytes), data.length);
    });
}

} // namespace lumora::platform::macos_backend
