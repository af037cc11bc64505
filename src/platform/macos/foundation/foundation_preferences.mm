#include "platform/macos/foundation/foundation_preferences.h"

#include "platform/macos/foundation/objc_exceptions.h"
#include "platform/macos/foundation/property_list_values.h"

namespace lumora::platform::macos_backend {

namespace {

CFStringRef userOf(PreferenceLevel level) {
    return level == PreferenceLevel::currentUserAnyHost ? kCFPreferencesCurrentUser : kCFPreferencesAnyUser;
}

} // namespace

std::optional<PropertyListValue> FoundationPreferences::objectForKey(const std::string& key) {
    return atPort(
        [&] { return valueFrom([NSUserDefaults.standardUserDefaults objectForKey:nsString(key)]); });
}

void FoundationPreferences::setObject(const std::string& key, const PropertyListValue& value) {
    atPort([&] { [NSUserDefaults.standardUserDefaults setObject:objectFrom(value) forKey:nsString(key)]; });
}

void FoundationPreferences::synchronize() {
    atPort([] { [NSUserDefaults.standardUserDefaults synchronize]; });
}

void FoundationPreferences::setValue(const std::string& key, const PropertyListValue& value,
                                     const std::string& domain, PreferenceLevel level) {
    atPort([&] {
        CFPreferencesSetValue((__bridge CFStringRef)nsString(key),
                              (__bridge CFPropertyListRef)objectFrom(value),
                              (__bridge CFStringRef)nsString(domain), userOf(level), kCFPreferencesAnyHost);
    });
}

bool FoundationPreferences::synchronize(const std::string& domain, PreferenceLevel level) {
    return atPort([&]() -> bool {
        return CFPreferencesSynchronize((__bridge CFStringRef)nsString(domain), userOf(level),
                                        kCFPreferencesAnyHost);
    });
}

} // namespace lumora::platform::macos_backend
