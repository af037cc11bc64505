#pragma once

#include "platform/bundle.h"

namespace lumora::platform::macos_backend {

/// `NSBundle`. What it remembers of a bundle's Info.plist is not used: a bundle may be replaced while this runs.
class FoundationBundles final : public Bundles {
  public:
    std::string mainBundlePath() override;
    std::optional<std::string> mainBundleIdentifier() override;
    std::optional<std::string> pathForResource(const std::string& name, const std::string& type) override;
    std::optional<PropertyListValue> infoDictionaryValue(const std::string& bundlePath,
                                                         const std::string& key) override;
};

} // namespace lumora::platform::macos_backend
