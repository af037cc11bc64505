#include "platform/macos/foundation/property_list_values.h"

#include "platform/macos/foundation/text.h"

#include <algorithm>
#include <cmath>

namespace lumora::platform::macos_backend {

namespace {

constexpr int kDeepestNesting = 512;           // the platform's own reader goes no deeper
constexpr double kYear10000 = 252'455'616'000; // in seconds since the reference date

bool isXml(const std::string& text) {
    const auto isForbidden = [](char byte) {
        return byte >= 0 && byte < ' ' && byte != '\t' && byte != '\n' && byte != '\r';
    };
    return std::none_of(text.begin(), text.end(), isForbidden) && text.find("\xEF\xBF\xBE") == text.npos &&
           text.find("\xEF\xBF\xBF") == text.npos;
}

struct ObjectMaker {
    Writable writable;
    int level = 0;

    id operator()(const std::string& text) const {
        if (writable == Writable::asXml && !isXml(text))
            return nil;
        return [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding];
    }
    id operator()(std::int64_t number) const { return [NSNumber numberWithLongLong:number]; }
    id operator()(double number) const { return [NSNumber numberWithDouble:number]; }
    id operator()(bool flag) const { return [NSNumber numberWithBool:flag]; }
    id operator()(const PropertyListData& data) const {
        return [NSData dataWithBytes:data.bytes.data() length:data.bytes.size()];
    }
    id operator()(const PropertyListDate& date) const {
        if (writable == Writable::asXml && !(std::abs(date.secondsSinceReferenceDate) < kYear10000))
            return nil;
        return [NSDate dateWithTimeIntervalSinceReferenceDate:date.secondsSinceReferenceDate];
    }
    id operator()(const PropertyListArray& array) const {
        NSMutableArray* objects = [NSMutableArray arrayWithCapacity:array.size()];
        for (const PropertyListValue& value : array) {
            id object = inner(value);
            if (object == nil)
                return nil;
            [objects addObject:object];
        }
        return objects;
    }
    id operator()(const PropertyListDictionary& dictionary) const {
        NSMutableDictionary* objects = [NSMutableDictionary dictionaryWithCapacity:dictionary.size()];
        for (const auto& [key, value] : dictionary) {
            id name = (*this)(key);
            id object = inner(value);
            if (name == nil || object == nil)
                return nil;
            [objects setObject:object forKey:name];
        }
        return objects;
    }
    id inner(const PropertyListValue& value) const {
        return level == kDeepestNesting ? nil : std::visit(ObjectMaker{writable, level + 1}, value.storage());
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

id objectFrom(const PropertyListValue& value, Writable writable) {
    return std::visit(ObjectMaker{writable}, value.storage());
}

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
