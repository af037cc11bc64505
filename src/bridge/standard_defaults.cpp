#include "bridge/standard_defaults.h"

#include "platform/ports.h"
#include "platform/preferences.h"
#include "support/rendering.h"

namespace lumora::standard_defaults {

std::optional<std::string> stringForKey(const std::string& key) {
    const auto value = platform::ports().preferences->objectForKey(key);
    if (!value)
        return std::nullopt;
    const bool readsAsText = value->as<std::string>() != nullptr || value->as<std::int64_t>() != nullptr ||
                             value->as<double>() != nullptr || value->as<bool>() != nullptr;
    return readsAsText ? std::optional(render(*value)) : std::nullopt;
}

void store(std::initializer_list<std::pair<const char*, platform::PropertyListValue>> entries) {
    auto& preferences = *platform::ports().preferences;
    for (const auto& [key, value] : entries)
        preferences.setObject(key, value);
    preferences.synchronize();
}

void clear(const std::string& key) { store({{key.c_str(), std::string()}}); }

} // namespace lumora::standard_defaults
