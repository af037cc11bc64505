#include "api/network_monitor.h"
#include "bridge/bridge_test.h"

namespace lumora {
namespace {

using namespace std::string_literals;

class PageLifecycle : public BridgeTest {};

TEST_F(PageLifecycle, aLoadedPageEndsTheWatch) {
    NetworkMonitor::shared().startMonitoringReachability("https://server.example/join");
    paths.update(platform::PathStatus::satisfied);
    loop.runMain();
    ASSERT_EQ(loop.validTimers(), 1U);

    post("lumoraLoaded");

    EXPECT_TRUE(paths.made.back()->cancelled);
    EXPECT_EQ(loop.validTimers(), 0U);
    EXPECT_TRUE(page.journal.empty());
}

TEST_F(PageLifecycle, aPageMayLoadWhileNothingIsWatched) {
    post("lumoraLoaded");
    post("lumoraLoaded", "again");

    EXPECT_EQ(loop.validTimers(), 0U);
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(PageLifecycle, consoleTextIsPrintedAsItIs) {
    post("consoleHandler", "");
    post("consoleHandler", "{} %s\nline \0 end"s);

    EXPECT_EQ(
        streams.printed(),
        (Lines{"handleMessageFromWebView(message:) : Console Message from WebView: ",
               "handleMessageFromWebView(message:) : Console Message from WebView: {} %s\nline \0 end"s}));
    EXPECT_TRUE(page.journal.empty());
}

TEST_F(PageLifecycle, theSystemIsAlwaysTheMac) {
    systemVersions.version = {"Debian GNU/Linux", "12"};

    post("getSystemOs");

    EXPECT_EQ(page.journal, Lines{R"(script window.receiveSystemOs("mac");)"});
    EXPECT_TRUE(preferences.journal.empty());
}

} // namespace
} // namespace lumora
