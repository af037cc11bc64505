#pragma once

#include "platform/property_list.h"

#import <Foundation/Foundation.h>

#include <optional>

namespace lumora::platform::macos_backend {

/// The value as property list objects.
id objectFrom(const PropertyListValue& value);

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
