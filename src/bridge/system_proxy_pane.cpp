#include "bridge/native_message_handler.h"
#include "platform/apple_script.h"
#include "platform/ports.h"
#include "platform/system_version.h"
#include "platform/workspace.h"
#include "support/url.h"

#include <charconv>
#include <string_view>

namespace lumora {

namespace {

constexpr int kFirstSystemWithSettingsLinks = 13;

constexpr std::string_view kProxySettingsLink =
    "x-apple.systempreferences:com.apple.Network-Settings.extension?Proxies";

constexpr const char* kProxyPaneScript =
    "tell application \"System Preferences\"\n"
    "    reveal anchor \"Proxies\" of pane id \"com.apple.preference.network\"\n"
    "    activate\n"
    "end tell";

bool isMacOs(const platform::SystemVersion& system) {
    return system.productName == "macOS" || system.productName == "Mac OS X"; // the name changed with 11
}

/// The number before the first dot; 0 when there is none.
int majorVersion(const platform::SystemVersion& system) {
    const std::string text = system.productVersion.value_or("");
    int major = 0;
    std::from_chars(text.data(), text.data() + text.size(), major);
    return major;
}

} // namespace

void NativeMessageHandler::openProxy() {
    const auto system = platform::ports().systemVersions->current();
    if (!isMacOs(system))
        return; // no such settings to show
    if (majorVersion(system) >= kFirstSystemWithSettingsLinks) {
        if (const auto link = parseUrl(kProxySettingsLink))
            platform::ports().workspace->openUrl(*link);
        return;
    }
    // An older system that refuses the script (automation not permitted) simply shows nothing.
    if (const auto script = platform::ports().appleScripts->makeScript(kProxyPaneScript))
        static_cast<void>(script->execute());
}

} // namespace lumora
