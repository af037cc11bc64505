#include "platform/macos/foundation/foundation_bundles.h"

#include "platform/macos/foundation/objc_exceptions.h"
#include "platform/macos/foundation/property_list_values.h"

namespace lumora::platform::macos_backend {

namespace {

std::optional<std::string> optionalText(NSString* text) {
    return text == nil ? std::nullopt : std::optional(textOf(text));
}

} // namespace

std::string FoundationBundles::mainBundlePath() {
    return atPort([] { return textOf(NSBundle.mainBundle.bundlePath); });
}

std::optional<std::string> FoundationBundles::mainBundleIdentifier() {
    return atPort([] { return optionalText(NSBundle.mainBundle.bundleIdentifier); });
}

std::optional<std::string> FoundationBundles::pathForResource(const std::string& name,
                                                              const std::string& type) {
    return atPort([&] {
        return optionalText([NSBundle.mainBundle pathForResource:nsString(name) ofType:nsString(type)]);
    });
}

std::optional<PropertyListValue> FoundationBundles::infoDictionaryValue(const std::string& bundlePath,
                                                                        const std::string& key) {
    return atPort([&] {
        NSString* file = [nsString(bundlePath) stringByAppendingPathComponent:@"Contents/Info.plist"];
        return valueFrom([[NSDictionary dictionaryWithContentsOfFile:file] objectForKey:nsString(key)]);
    });
}

} // namespace lumora::platform::macos_backend
