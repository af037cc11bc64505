#pragma once

#include "platform/bundle.h"
#include "platform/linux/ports/home_folder.h"

namespace lumora::platform::linux_backend {

/// Bundles as folders: NAME.app/Contents/{Info.plist,MacOS/NAME,Resources}.
class LinuxBundles final : public Bundles {
  public:
    /// The running program's own file. Asked once, at the start: the bundle may be exchanged while it runs.
    [[nodiscard]] static std::string runningExecutable();

    LinuxBundles(const std::string& executable, HomeFolder home, PropertyListSerialization& propertyLists);

    std::string mainBundlePath() override;
    std::optional<std::string> mainBundleIdentifier() override;
    std::optional<std::string> pathForResource(const std::string& name, const std::string& type) override;
    std::optional<PropertyListValue> infoDictionaryValue(const std::string& bundlePath,
                                                         const std::string& key) override;

  private:
    const std::string mainBundle_;
    const HomeFolder home_;
    PropertyListSerialization& propertyLists_;
};

} // namespace lumora::platform::linux_backend
