#include "bridge/bridge_test.h"

namespace lumora {
namespace {

class SystemProxyPane : public BridgeTest {
  protected:
    static constexpr const char* kLink =
        "x-apple.systempreferences:com.apple.Network-Settings.extension?Proxies";
};

TEST_F(SystemProxyPane, opensTheSettingsLinkFromVersion13On) {
    for (const char* version : {"13.0", "13", "13.2.1", "14.5", "26.0"})
        for (const char* name : {"macOS", "Mac OS X"}) {
            systemVersions.version = {name, version};
            post("openProxy");
        }

    EXPECT_EQ(workspace.opened, Lines(10, kLink));
    EXPECT_TRUE(appleScripts.sources.empty());
    EXPECT_TRUE(page.journal.empty());
}

TEST_F(SystemProxyPane, runsTheScriptOnEarlierSystems) {
    systemVersions.version = {"macOS", "12.7.6"};
    post("openProxy");
    systemVersions.version = {"Mac OS X", "10.15.7"};
    post("openProxy", "ignored");

    const std::string script = R"(tell application "System Preferences"
    reveal anchor "Proxies" of pane id "com.apple.preference.network"
    activate
end tell)";
    EXPECT_EQ(appleScripts.sources, Lines(2, script));
    EXPECT_TRUE(workspace.opened.empty());
}

TEST_F(SystemProxyPane, ignoresAScriptThatFails) {
    systemVersions.version = {"macOS", "12.0"};
    appleScripts.error = platform::AppleScriptError{-1743, "Not authorised."};

    post("openProxy");

    EXPECT_EQ(appleScripts.sources.size(), 1U);
    EXPECT_TRUE(streams.printed().empty());
    EXPECT_TRUE(workspace.opened.empty());
}

TEST_F(SystemProxyPane, ignoresAScriptThatCannotBeMade) {
    systemVersions.version = {"macOS", "12.0"};
    appleScripts.refuses = true;

    post("openProxy");

    EXPECT_TRUE(appleScripts.sources.empty());
    EXPECT_TRUE(workspace.opened.empty());
}

TEST_F(SystemProxyPane, doesNothingOnOtherSystems) {
    systemVersions.version = {"Debian GNU/Linux", "13"};
    post("openProxy");
    systemVersions.version = {std::nullopt, std::nullopt};
    post("openProxy");

    EXPECT_TRUE(workspace.opened.empty());
    EXPECT_TRUE(appleScripts.sources.empty());
}

} // namespace
} // namespace lumora
