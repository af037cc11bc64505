#include "platform/macos/foundation/property_list_values.h"

#include "platform/macos/foundation/text.h"

namespace lumora::platform::macos_backend {

namespace {

struct ObjectMaker {
    id operator()(const std::string& text) const { return nsString(text); }
    id operator()(std::int64_t number) const { return @(number); }
    id operator()(double number) const { return @(number); }
    id operator()(bool flag) const { return [NSNumber numberWithBool:flag]; }
    id operator()(const PropertyListData& data) const {
        return [NSData dataWithBytes:data.bytes.data() length:data.bytes.size()];
    }
    id operator()(const PropertyListDate& date) const {
        return [NSDate dateWithTimeIntervalSinceReferenceDate:date.secondsSinceReferenceDate];
    }
    id operator()(const PropertyListArray& array) const {
        NSMutableArray* objects = [NSMutableArray arrayWithCapacity:array.size()];
        for (const PropertyListValue& value : array)
            [objects addObject:objectFrom(value)];
        return objects;
    }
    id operator()(const PropertyListDictionary& dictionary) const {
        NSMutableDictionary* objects = [NSMutableDictionary dictionaryWithCapacity:dictionary.size()];
        for (const auto& [key, value] : dictionary)
            [objects setObject:objectFrom(value) forKey:nsString(key)];
        return objects;
    }
};

PropertyListValue valueOf(NSNumber* number) {
    // The two booleans are objects of their own; any other number only looks like one.
    for (const bool flag : {false, true}) {
        if (number == [NSNumber numberWithBool:flag])
            return flag;
    }
    const char type = *number.objCType;
    if (type == 'f' || type == 'd' || [number compare:@(INT64_MAX)] == NSOrderedDescending)
        return number.doubleValue;
    return static_cast<std::int64_t>(number.longLongValue);
}

} // namespace

id objectFrom(const PropertyListValue& value) { return std::visit(ObjectMaker{}, value.storage()); }

std::optional<PropertyListValue> valueFrom(id object) {
    if ([object isKindOfClass:[NSString class]])
        return textOf(object);
    if ([object isKindOfClass:[NSNumber class]])
        return valueOf(object);
    if ([object isKindOfClass:[NSDate class]])
        return PropertyListDate{[object timeIntervalSinceReferenceDate]};
    if ([object isKindOfClass:[NSData class]]) {
        const auto* bytes = static_cast<const std::uint8_t*>([object bytes]);
        return PropertyListData{{bytes, bytes + [object length]}};
    }
    if ([object isKindOfClass:[NSArray class]]) {
        PropertyListArray array;
        for (id element in object) {
            if (auto value = valueFrom(element))
                array.push_back(std::move(*value));
        }
        return array;
    }
    if ([object isKindOfClass:[NSDictionary class]]) {
        PropertyListDictionary dictionary;
        for (id key in object) {
            if (auto value = valueFrom([object objectForKey:key]);
                value && [key isKindOfClass:[NSString class]])
                dictionary.emplace(textOf(key), std::move(*value));
        }
        return dictionary;
    }
    return std::nullopt;
}

} // namespace lumora::platform::macos_backend
