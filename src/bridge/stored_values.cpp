#include "bridge/stored_values.h"

#include "platform/ports.h"
#include "platform/preferences.h"
#include "support/json.h"

#include <algorithm>

namespace lumora {

namespace {

platform::Error noJsonForm(const std::string& key) {
    constexpr int kPropertyListWriteInvalid = 3852;
    return {
        "NSCocoaErrorDomain", kPropertyListWriteInvalid, "The value of " + key + " has no JSON form.", {}};
}

} // namespace

StoredValues::StoredValues(std::initializer_list<const char*> keys) {
    for (const char* key : keys)
        entries_.emplace_back(key, platform::ports().preferences->objectForKey(key));
}

bool StoredValues::isAbsentOrEmptyText(const std::string& key) const {
    const auto entry = std::ranges::find(entries_, key, &Entry::first);
    if (entry == entries_.end() || !entry->second)
        return true;
    const auto* text = entry->second->as<std::string>();
    return text != nullptr && text->empty();
}

void StoredValues::replace(const std::string& key, platform::PropertyListValue value) {
    if (const auto entry = std::ranges::find(entries_, key, &Entry::first); entry != entries_.end())
        entry->second = std::move(value);
}

platform::Result<std::string> StoredValues::serialize() const {
    OrderedJson object = OrderedJson::object();
    for (const auto& [key, value] : entries_) {
        auto json = toJson(value);
        if (!json || !serializeJson(*json))
            return noJsonForm(key);
        object[key] = std::move(*json);
    }
    return object.dump();
}

} // namespace lumora
