#pragma once

#include "platform/linux/ports/preference_file.h"
#include "platform/preferences.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace lumora::platform::linux_backend {

/// Where the levels' files lie, each file named DOMAIN.plist.
struct PreferenceFolders {
    std::string managed = "/Library/Managed Preferences";
    std::string user; ///< the user's Library/Preferences
    std::string system = "/Library/Preferences";

    /// The standard ones for a home folder.
    [[nodiscard]] static PreferenceFolders forHome(const std::string& home);
};

/// Layered preferences in property-list files.
class LinuxPreferences final : public Preferences {
  public:
    static constexpr const char* kApplicationDomain = "com.ovra.tessel.OvraTesselLumora";

    /// @param launchArguments  without the program's own name
    LinuxPreferences(const std::vector<std::string>& launchArguments, PreferenceFolders folders,
                     PropertyListSerialization& propertyLists, std::string domain = kApplicationDomain);

    std::optional<PropertyListValue> objectForKey(const std::string& key) override;
    void setObject(const std::string& key, const PropertyListValue& value) override;
    void synchronize() override;
    void setValue(const std::string& key, const PropertyListValue& value, const std::string& domain,
                  PreferenceLevel level) override;
    bool synchronize(const std::string& domain, PreferenceLevel level) override;

  private:
    /// Absent for a domain that is no file name.
    PreferenceFile* fileOf(const std::string& domain, PreferenceLevel level);

    const std::map<std::string, std::string> arguments_;
    const PreferenceFolders folders_;
    PropertyListSerialization& propertyLists_;
    const std::string domain_;
    PreferenceFile managed_;
    std::mutex mutex_;
    std::map<std::pair<std::string, PreferenceLevel>, std::unique_ptr<PreferenceFile>> files_;
};

} // namespace lumora::platform::linux_backend
