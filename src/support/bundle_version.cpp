#include "support/bundle_version.h"

#include "platform/bundle.h"
#include "platform/ports.h"
#include "support/rendering.h"

namespace lumora {

std::string bundleVersion(const std::string& path) {
    const auto version = platform::ports().bundles->infoDictionaryValue(path, "CFBundleShortVersionString");
    return version ? render(*version) : kNullPlaceholder;
}

} // namespace lumora
