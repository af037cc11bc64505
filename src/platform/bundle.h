#pragma once

#include "platform/property_list.h"

#include <optional>
#include <string>

namespace lumora::platform {

/// Application bundles: the running one, and any other by its path. Callable from any thread.
class Bundles {
  public:
    virtual ~Bundles() = default;

    /// The running application's bundle, e.g. "/Applications/Ovra Tessel Lumora.app".
    [[nodiscard]] virtual std::string mainBundlePath() = 0;

    [[nodiscard]] virtual std::optional<std::string> mainBundleIdentifier() = 0;

    /// The path of a resource of the running bundle, e.g. ("NoInternetPage", "html"); absent when it is missing.
    [[nodiscard]] virtual std::optional<std::string> pathForResource(const std::string& name,
                                                                     const std::string& type) = 0;

    /// One entry of the Info.plist of the bundle at a path, read afresh from disk; absent when the bundle, its
    /// Info.plist or the entry is missing.
    [[nodiscard]] virtual std::optional<PropertyListValue> infoDictionaryValue(const std::string& bundlePath,
                                                                               const std::string& key) = 0;
};

} // namespace lumora::platform
