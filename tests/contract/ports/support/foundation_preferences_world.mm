#include "platform/macos/foundation/property_list_values.h"
#include "support/backend.h"
#include "support/preferences_world.h"

#import <Foundation/Foundation.h>

#include <unistd.h>

#include <cstdlib>

namespace lumora::contract {

using platform::PropertyListDictionary;
using platform::macos_backend::objectFrom;
using platform::macos_backend::valueFrom;

namespace {

constexpr const char* kSharedVariable = "LUMORA_CONTRACT_PREFERENCES";

NSUserDefaults* defaults() { return NSUserDefaults.standardUserDefaults; }

} // namespace

struct PreferencesWorld::State {
    static void clear() {
        @autoreleasepool {
            for (const char* domain : {kDomain, kOtherDomain})
                [defaults() removePersistentDomainForName:@(domain)];
            [defaults() synchronize];
        }
    }

    bool isOwn = std::getenv(kSharedVariable) == nullptr;
};

PreferencesWorld::PreferencesWorld() : state_(std::make_unique<State>()) {
    if (!state_->isOwn)
        return;
    ::setenv(kSharedVariable, "1", 1);
    State::clear();
}

PreferencesWorld::~PreferencesWorld() {
    if (!state_->isOwn)
        return;
    State::clear();
    ::unsetenv(kSharedVariable);
}

std::unique_ptr<platform::Preferences> PreferencesWorld::open(const std::vector<std::string>&) {
    return makePreferences();
}

void PreferencesWorld::store(const PropertyListDictionary& values) {
    @autoreleasepool {
        [defaults() setPersistentDomain:objectFrom(values) forName:@(kDomain)];
        [defaults() synchronize];
    }
}

PropertyListDictionary PreferencesWorld::stored(const std::string& domain) {
    @autoreleasepool {
        const auto list = valueFrom([defaults() persistentDomainForName:@(domain.c_str())]);
        const auto* dictionary = list ? list->as<PropertyListDictionary>() : nullptr;
        return dictionary == nullptr ? PropertyListDictionary{} : *dictionary;
    }
}

bool PreferencesWorld::storeForAllUsers(const PropertyListDictionary&) { return false; }

std::string PreferencesWorld::fileOfAllUsers() const {
    return std::string("/Library/Preferences/") + kDomain + ".plist";
}

bool PreferencesWorld::becomeOrdinaryUser() { return ::geteuid() != 0; }

} // namespace lumora::contract
