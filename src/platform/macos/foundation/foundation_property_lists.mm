#include "platform/macos/foundation/foundation_property_lists.h"

#include "platform/macos/foundation/objc_exceptions.h"
#include "platform/macos/foundation/property_list_values.h"

#include <algorithm>

namespace lumora::platform::macos_backend {

namespace {

// The platform writes control characters into XML as they are, and no other reader takes them there.
bool isXml(const std::string& text) {
    const auto isForbidden = [](char byte) {
        return byte >= 0 && byte < ' ' && byte != '\t' && byte != '\n' && byte != '\r';
    };
    return std::none_of(text.begin(), text.end(), isForbidden) && text.find("\xEF\xBF\xBE") == text.npos &&
           text.find("\xEF\xBF\xBF") == text.npos;
}

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
        id list = objectFrom(value);
        NSData* data = list == nil
                           ? nil
                           : [NSPropertyListSerialization dataWithPropertyList:list
                                                                        format:NSPropertyListXMLFormat_v1_0
                                                                       options:0
                                                                         error:&error];
        std::string text(static_cast<const char*>(data.bytes), data.length);
        if (text.empty() || !isXml(text))
            return errorOf(error);
        return text;
    });
}

} // namespace lumora::platform::macos_backend
