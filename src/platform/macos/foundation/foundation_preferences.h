#pragma once

#include "platform/preferences.h"

namespace lumora::platform::macos_backend {

/// `NSUserDefaults` for the search list and the application's own level, `CFPreferences` for the levels by name.
class FoundationPreferences final : public Preferences {
  public:
    std::optional<PropertyListValue> objectForKey(const std::string& key) override;
    void setObject(const std::string& key, const PropertyListValue& value) override;
    void synchronize() override;
    void setValue(const std::string& key, const PropertyListValue& value, const std::string& domain,
                  PreferenceLevel level) override;
    bool synchronize(const std::string& domain, PreferenceLevel level) override;
};

} // namespace lumora::platform::macos_backend
