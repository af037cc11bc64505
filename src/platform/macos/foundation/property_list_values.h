#pragma once

#include "platform/property_list.h"

#import <Foundation/Foundation.h>

#include <optional>

namespace lumora::platform::macos_backend {

/// Which texts and dates a property list may hold.
enum class Writable { inMemory, asXml };

/// The value as property list objects; nil for one that these cannot hold: text that is not UTF-8, nesting without end,
/// and for XML the characters that it forbids and dates of no four-digit year.
id objectFrom(const PropertyListValue& value, Writable writable = Writable::inMemory);

/// The objects as a value; absent for nil and for what no property list holds.
std::optional<PropertyListValue> valueFrom(id object);

/// The same when it is of the type.
template <class T>
std::optional<T> valueFrom(id object) {
    const auto value = valueFrom(object);
    const T* typed = value ? value->as<T>() : nullptr;
    return typed == nullptr ? std::nullopt : std::optional(*typed);
}

} // namespace lumora::platform::macos_backend
