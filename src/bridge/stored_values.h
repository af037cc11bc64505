#pragma once

#include "platform/property_list.h"
#include "platform/result.h"

#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumora {

/// Preference values read at once for a reply to the page: one entry a key, in the order of the keys, absent ones
/// included.
class StoredValues {
  public:
    explicit StoredValues(std::initializer_list<const char*> keys);

    [[nodiscard]] bool isAbsentOrEmptyText(const std::string& key) const;
    void replace(const std::string& key, platform::PropertyListValue value);

    /// Compact JSON with the keys in order; absent values are null, all others keep the type they were stored with.
    /// An error names the first key whose value has no JSON form.
    [[nodiscard]] platform::Result<std::string> serialize() const;

  private:
    using Entry = std::pair<std::string, std::optional<platform::PropertyListValue>>;
    std::vector<Entry> entries_;
};

} // namespace lumora
