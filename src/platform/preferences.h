#pragma once

#include "platform/property_list.h"

#include <optional>
#include <string>

namespace lumora::platform {

/// The two levels that the application writes besides its own defaults.
enum class PreferenceLevel {
    currentUserAnyHost, ///< this user, every machine
    anyUserAnyHost,     ///< every user: needs an administrator's rights, fails silently without them
};

/// The layered preferences of the application's domain. Callable from any thread and safe against other
/// processes that write the same domain.
class Preferences {
  public:
    virtual ~Preferences() = default;

    /// The first hit along the search list: launch arguments (`-Key value`, always strings), managed, user, system.
    /// A malformed preference file counts as empty.
    [[nodiscard]] virtual std::optional<PropertyListValue> objectForKey(const std::string& key) = 0;

    /// Stores under the key at the user level of the application's own domain.
    virtual void setObject(const std::string& key, const PropertyListValue& value) = 0;

    /// Waits until what setObject stored is on disk.
    virtual void synchronize() = 0;

    /// Stores at one level of a domain; takes effect at the latest with the next synchronize of that level.
    virtual void setValue(const std::string& key, const PropertyListValue& value, const std::string& domain,
                          PreferenceLevel level) = 0;

    /// Flushes one level of a domain; false when that level cannot be written.
    virtual bool synchronize(const std::string& domain, PreferenceLevel level) = 0;
};

} // namespace lumora::platform
