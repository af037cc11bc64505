#include "platform/preferences.h"

#include "config/session_details.h"
#include "config/utils.h"
#include "platform/bundle.h"
#include "platform/file_manager.h"
#include "platform/ports.h"
#include "support/exception_guard.h"
#include "support/log.h"
#include "support/rendering.h"

#include <array>

namespace lumora {

namespace {

constexpr const char* kPreferenceForKey = "+[Utils preferenceForKey:]";
constexpr const char* kSyncConfigToAllLevels = "+[Utils syncConfigToAllLevels]";
constexpr const char* kParseCommandLineArgs = "+[Utils parseCommandLineArgs]";

constexpr const char* kFallbackDomain = "com.ovra.tessel.OvraTesselLumora";
constexpr const char* kNativeFolder = "/Library/Application Support/OvraLumoraNativeFolder/";

constexpr const char* kLumoraToken = "LumoraToken";
constexpr const char* kDc = "DC";
constexpr const char* kPathForLumora = "pathForLumora";
constexpr const char* kWebServer = "WebServer"; // handed on to all levels, never used to choose the server

constexpr std::array kConfigKeys{kLumoraToken, kDc, kPathForLumora, kWebServer};
constexpr std::array kLevels{platform::PreferenceLevel::currentUserAnyHost,
                             platform::PreferenceLevel::anyUserAnyHost};

std::string preferenceDomain() {
    return platform::ports().bundles->mainBundleIdentifier().value_or(kFallbackDomain);
}

/// Copies the keys that have a value; whether there was one.
bool copyConfigToAllLevels() {
    bool found = false;
    for (const char* key : kConfigKeys) {
        const auto value = Utils::preferenceForKey(key);
        if (!value)
            continue;
        Utils::syncPreferenceToAllLevels(key, value);
        found = true;
    }
    return found;
}

void readPreferencesIntoSession(SessionDetails& session) {
    if (auto token = Utils::preferenceForKey(kLumoraToken))
        session.setLumoraToken(std::move(token));
    if (const auto dc = Utils::preferenceForKey(kDc)) {
        session.setPlistDcName(dc);
        session.setDcName(dc);
        // One lookup a field: support staff know a start-up by its two groups of lookup lines.
        session.setWebServerName(Utils::findWebserverNameWithDCName(dc));
        session.setPlistWebServerName(Utils::findWebserverNameWithDCName(dc));
    }
    if (auto path = Utils::preferenceForKey(kPathForLumora))
        session.setPathForLumora(std::move(path));
}

} // namespace

std::optional<std::string> Utils::preferenceForKey(const std::string& key) {
    const auto object = platform::ports().preferences->objectForKey(key);
    if (!object) {
        log("{} : Key '{}' not found in any defaults domain (managed/user/system)", kPreferenceForKey, key);
        return std::nullopt;
    }
    auto text = render(*object);
    log("{} : Key '{}' resolved via NSUserDefaults search list (managed/user/system): {}", kPreferenceForKey,
        key, text);
    return text;
}

void Utils::syncPreferenceToAllLevels(const std::optional<std::string>& key,
                                      const std::optional<std::string>& value) {
    if (!key || !value)
        return;
    const auto domain = preferenceDomain();
    for (const auto level : kLevels)
        platform::ports().preferences->setValue(*key, *value, domain, level);
}

void Utils::syncConfigToAllLevels() {
    guarded(kSyncConfigToAllLevels, [] {
        const auto domain = preferenceDomain();
        if (!copyConfigToAllLevels()) {
            log("{} : No config values found to sync.", kSyncConfigToAllLevels);
            return;
        }
        // Without an administrator's rights the all-users level stays as it is, which is no failure.
        for (const auto level : kLevels)
            platform::ports().preferences->synchronize(domain, level);
        log("{} : Config synced to both user-level and system-level preferences.", kSyncConfigToAllLevels);
    });
}

void Utils::parseCommandLineArgs() {
    guarded(kParseCommandLineArgs, [] {
        auto& session = SessionDetails::getInstance();
        auto* files = platform::ports().fileManager;
        session.setDefaultOvraDirectoryManager(files);
        session.setOvraLumoraNativeFolder(files->homeDirectory() + kNativeFolder);
        log("{} ******* Ovra Tesssel Lumora App Invoked By User.", kParseCommandLineArgs);
        readPreferencesIntoSession(session);
        log("{} : Arguments Read From Preferences => WebServerName : {} , LumoraToken : {} , DC = {}",
            kParseCommandLineArgs, render(session.webServerName()), render(session.lumoraToken()),
            render(session.dcName()));
        syncConfigToAllLevels();
        session.setStaticWebServerName(session.webServerName());
        session.setCustomDomainEnabled("false");
        if (const auto token = session.lumoraToken(); token && !token->empty())
            getCustomDomain();
        else
            log("{} : Lumora Token is null, skipping getCustomDomain call.", kParseCommandLineArgs);
    });
}

} // namespace lumora
