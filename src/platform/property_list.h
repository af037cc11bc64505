#pragma once

#include "platform/result.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace lumora::platform {

class PropertyListValue;

using PropertyListArray = std::vector<PropertyListValue>;
using PropertyListDictionary = std::map<std::string, PropertyListValue>;

/// Raw bytes (<data>).
struct PropertyListData {
    std::vector<std::uint8_t> bytes;
    bool operator==(const PropertyListData&) const = default;
};

/// A point in time (<date>), in seconds since 2001-01-01T00:00:00Z, the property list format's own epoch.
struct PropertyListDate {
    double secondsSinceReferenceDate = 0;
    bool operator==(const PropertyListDate&) const = default;
};

/// One value of a property list: what preference files and the connection-settings file are made of.
class PropertyListValue {
  public:
    using Storage = std::variant<std::string, std::int64_t, double, bool, PropertyListData, PropertyListDate,
                                 PropertyListArray, PropertyListDictionary>;

    PropertyListValue(std::string text) : storage_(std::move(text)) {}
    PropertyListValue(const char* text) : storage_(std::string(text)) {}
    PropertyListValue(std::int64_t number) : storage_(number) {}
    PropertyListValue(double number) : storage_(number) {}
    PropertyListValue(bool flag) : storage_(flag) {}
    PropertyListValue(PropertyListData data) : storage_(std::move(data)) {}
    PropertyListValue(PropertyListDate date) : storage_(date) {}
    PropertyListValue(PropertyListArray array) : storage_(std::move(array)) {}
    PropertyListValue(PropertyListDictionary dictionary) : storage_(std::move(dictionary)) {}

    [[nodiscard]] const Storage& storage() const { return storage_; }

    /// The value when it has exactly this type, else nullptr. A boolean is not an integer here.
    template <class T>
    [[nodiscard]] const T* as() const {
        return std::get_if<T>(&storage_);
    }

    bool operator==(const PropertyListValue&) const = default;

  private:
    Storage storage_;
};

/// Reads and writes property lists. Callable from any thread.
class PropertyListSerialization {
  public:
    virtual ~PropertyListSerialization() = default;

    /// Parses an XML or binary property list.
    virtual Result<PropertyListValue> parse(std::string_view bytes) = 0;

    /// The value as an XML 1.0 property list. Fails for text that XML cannot carry (NUL, invalid UTF-8).
    virtual Result<std::string> serializeXml(const PropertyListValue& value) = 0;
};

} // namespace lumora::platform
