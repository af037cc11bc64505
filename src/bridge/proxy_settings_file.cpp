#include "bridge/native_message_handler.h"
#include "platform/file_manager.h"
#include "platform/ports.h"
#include "platform/preferences.h"
#include "platform/property_list.h"
#include "support/log.h"

namespace lumora {

namespace {

using platform::PropertyListDictionary;
using platform::PropertyListValue;

struct ProxySettings {
    std::string host;
    std::int64_t port = 0;
    bool authRequired = false;
    std::string userName;
    std::string password;
};

enum class WithoutAuthentication { emptyCredentials, keepCredentials };

/// The preference when it is stored with exactly this type.
template <class T>
std::optional<T> preference(const std::string& key) {
    const auto value = platform::ports().preferences->objectForKey(key);
    const T* typed = value ? value->as<T>() : nullptr;
    return typed != nullptr ? std::optional(*typed) : std::nullopt;
}

/// The five settings, when all are there and usable.
std::optional<ProxySettings> storedProxySettings() {
    const auto host = preference<std::string>("host");
    const auto port = preference<std::int64_t>("port");
    const auto authRequired = preference<bool>("authRequired");
    const auto userName = preference<std::string>("userName");
    const auto password = preference<std::string>("password");
    if (!host || !port || !authRequired || !userName || !password)
        return std::nullopt;
    if (host->empty() || *port < 0 || *port > 65535)
        return std::nullopt;
    return ProxySettings{*host, *port, *authRequired, *userName, *password};
}

void apply(const ProxySettings& settings, WithoutAuthentication withoutAuthentication,
           PropertyListDictionary& file) {
    file.insert_or_assign("ProxyIpAddress", settings.host);
    file.insert_or_assign("ProxyServerPort", settings.port);
    if (!settings.authRequired && withoutAuthentication == WithoutAuthentication::keepCredentials)
        return;
    file.insert_or_assign("UserName", settings.authRequired ? settings.userName : std::string());
    file.insert_or_assign("Password", settings.authRequired ? settings.password : std::string());
}

/// @return false when the folder cannot be made or the content has no XML form.
bool createSettingsFile(const std::string& folder, const std::string& path, const ProxySettings& settings) {
    auto& files = *platform::ports().fileManager;
    if (!files.createDirectoryWithIntermediates(folder))
        return false;
    PropertyListDictionary content;
    apply(settings, WithoutAuthentication::emptyCredentials, content);
    const auto xml = platform::ports().propertyLists->serializeXml(content);
    if (!xml)
        return false;
    // Not checked: the agent then starts without a proxy, as it does without settings.
    static_cast<void>(files.createFile(path, xml.value(), {}));
    return true;
}

/// The file's entries; absent when it cannot be read or is no dictionary.
std::optional<PropertyListDictionary> loadSettingsFile(const std::string& path) {
    const auto bytes = platform::ports().fileManager->readFile(path);
    if (!bytes)
        return std::nullopt;
    const auto root = platform::ports().propertyLists->parse(bytes.value());
    const auto* content = root ? root.value().as<PropertyListDictionary>() : nullptr;
    return content != nullptr ? std::optional(*content) : std::nullopt;
}

/// @return false when the content has no XML form or cannot be written.
bool updateSettingsFile(const std::string& path, const ProxySettings& settings,
                        PropertyListDictionary content) {
    // Credentials stay when the proxy needs none now: the customer may switch authentication on again.
    apply(settings, WithoutAuthentication::keepCredentials, content);
    const auto xml = platform::ports().propertyLists->serializeXml(content);
    return xml && platform::ports().fileManager->overwriteFile(path, xml.value());
}

} // namespace

void NativeMessageHandler::setupProxyDetails() {
    const auto settings = storedProxySettings();
    if (!settings)
        return;
    auto& files = *platform::ports().fileManager;
    const std::string folder = files.libraryDirectory() + "/Logs/OvraTessel";
    const std::string path = folder + "/ConnectionSettings.plist";
    if (!files.fileExists(path)) {
        if (!createSettingsFile(folder, path, *settings))
            print("setupProxyDetails() : Unable to create the connection plist file at the desired path.");
        return;
    }
    auto content = loadSettingsFile(path);
    if (!content)
        return;
    if (!updateSettingsFile(path, *settings, std::move(*content)))
        print("setupProxyDetails() : Unable to write connection settings to ConnectionSettings.plist.");
}

} // namespace lumora
