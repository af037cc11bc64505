#include "api/api_handler.h"
#include "webhost/web_host_test.h"

#include <algorithm>
#include <csignal>

namespace lumora {
namespace {

class ViewControllerTest : public WebHostTest {
  protected:
    fakes::FakeWindow window;

    static Lines handlerLines() {
        Lines lines;
        for (const auto& name : NativeMessageHandler::messageNames())
            lines.push_back("handler " + name);
        return lines;
    }
};

TEST_F(ViewControllerTest, registersTheNamesAndThenLoadsTheJoinPage) {
    controller->viewDidLoad();

    auto expected = handlerLines();
    ASSERT_EQ(expected.size(), 18U);
    expected.emplace_back(kLoad);
    EXPECT_EQ(webViewHost.journal, expected);
    EXPECT_EQ(webViewHost.delegate, controller.get());
    EXPECT_EQ(NativeMessageHandler::shared().nativeMessageHandlerDelegate(), controller.get());
    EXPECT_EQ(NetworkMonitor::shared().networkMonitorDelegate(), controller.get());
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(ViewControllerTest, watchesTheJoinPagesAddressInTheEnd) {
    configure("server.example", "join", "t");

    controller->viewDidLoad();

    EXPECT_EQ(probedAddresses(), Lines{"https://server.example/join?lumora_token=t"});
}

TEST_F(ViewControllerTest, isWiredAndWatchesTheBareServerWhenTheFirstLoadBegins) {
    Lines watched;
    webViewHost.onLoad = [&] {
        EXPECT_EQ(webViewHost.delegate, controller.get());
        EXPECT_EQ(NativeMessageHandler::shared().nativeMessageHandlerDelegate(), controller.get());
        EXPECT_EQ(NetworkMonitor::shared().networkMonitorDelegate(), controller.get());
        watched = probedAddresses();
    };

    controller->viewDidLoad();

    EXPECT_EQ(watched, Lines{"server.example"});
    EXPECT_EQ(probedAddresses(), Lines{"https://server.example/join"});
    ASSERT_EQ(paths.made.size(), 1U);
    EXPECT_EQ(paths.made[0]->starts, 2);
}

TEST_F(ViewControllerTest, showsTheJoinPageOfTheDefaultServerThatTheUpdateCheckSetBefore) {
    configure(std::nullopt, "join");
    ApiHandler::getInstance().checkLumoraUpdate([](bool) {});
    http.tasks.clear();

    controller->viewDidLoad();

    EXPECT_EQ(webViewHost.journal.back(), "load https://com.ovratessel.example/join");
    EXPECT_EQ(probedAddresses(), Lines{"https://com.ovratessel.example/join"});
}

TEST_F(ViewControllerTest, keepsTheMisconfigurationPageWhenTheDefaultServerComesAfterwards) {
    configure(std::nullopt, "join");
    showView();

    ApiHandler::getInstance().checkLumoraUpdate([](bool) {});

    EXPECT_TRUE(webViewHost.journal.empty());
    EXPECT_TRUE(paths.made.empty());
    EXPECT_EQ(controller->decidePolicyFor({platform::NavigationType::reload,
                                           "file:///App/Resources/MisconfigurationPage.html", true, true}),
              platform::NavigationPolicy::allow);
    controller->loadJoinPageURl(); // whoever asks for the page next gets it
    EXPECT_EQ(webViewHost.journal, Lines{"load https://com.ovratessel.example/join"});
}

TEST_F(ViewControllerTest, withoutAServerShowsTheMisconfigurationPageAndWatchesNothing) {
    configure("server.example", "");

    controller->viewDidLoad();

    auto expected = handlerLines();
    expected.emplace_back(kMisconfigured);
    EXPECT_EQ(webViewHost.journal, expected);
    EXPECT_EQ(
        streams.printed(),
        Lines{"viewDidLoad() : ################ Critical ################\n webServerName is null or empty "
              "— Application is not configured correctly."});
    EXPECT_EQ(NativeMessageHandler::shared().nativeMessageHandlerDelegate(), controller.get());
    EXPECT_EQ(NetworkMonitor::shared().networkMonitorDelegate(), nullptr);
    EXPECT_TRUE(probedAddresses().empty());
}

TEST_F(ViewControllerTest, watchesAlthoughTheAddressDoesNotParse) {
    configure("server.example", "a path");

    controller->viewDidLoad();

    EXPECT_EQ(webViewHost.journal.back(), kMisconfigured);
    EXPECT_TRUE(streams.printed().empty());
    EXPECT_EQ(NetworkMonitor::shared().networkMonitorDelegate(), controller.get());
    EXPECT_FALSE(paths.made.empty());
    EXPECT_TRUE(probedAddresses().empty()); // an address that does not parse is never probed
}

TEST_F(ViewControllerTest, leavesTheTitleAloneWithoutAWindow) {
    preferences.user.emplace("WindowTitle", "Stored");

    controller->viewDidLoad();

    EXPECT_TRUE(preferences.journal.empty());
}

TEST_F(ViewControllerTest, givesAWindowThatStandsAlreadyTheStoredTitle) {
    webViewHost.currentWindow = &window;
    preferences.user.emplace("WindowTitle", "Stored");

    controller->viewDidLoad();

    EXPECT_EQ(window.current, "Stored");
    EXPECT_TRUE(preferences.journal.empty());
}

using ViewControllerDeathTest = ViewControllerTest;

TEST_F(ViewControllerDeathTest, stopsForAWindowWithoutAStoredTitle) {
    webViewHost.currentWindow = &window;

    EXPECT_EXIT(controller->viewDidLoad(), ::testing::KilledBySignal(SIGABRT), "");
}

TEST_F(ViewControllerDeathTest, stopsWhenAScriptIsToRunBeforeTheViewStands) {
    EXPECT_EXIT(controller->executeJavaScript("1;"), ::testing::KilledBySignal(SIGABRT), "");
}

TEST_F(ViewControllerTest, titlesItsWindowWhenThereIsOne) {
    controller->updateWindowTitle("Nobody sees this");
    webViewHost.currentWindow = &window;
    controller->updateWindowTitle("Acme Support");

    EXPECT_EQ(window.current, "Acme Support");
    EXPECT_TRUE(preferences.journal.empty());
}

TEST_F(ViewControllerTest, runsScriptsInThePage) {
    showView();

    controller->executeJavaScript("window.receiveX(\"1\");");

    EXPECT_EQ(webViewHost.journal, Lines{"script window.receiveX(\"1\");"});
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(ViewControllerTest, printsAScriptsError) {
    showView();
    webViewHost.scriptError = platform::Error{"WKErrorDomain", 4, "A JavaScript exception occurred", {}};

    controller->executeJavaScript("x(");

    EXPECT_EQ(streams.printed(), Lines{"executeJavaScript(_:)Error sending message to webView: Error "
                                       "Domain=WKErrorDomain Code=4 \"A JavaScript exception occurred\""});
}

TEST_F(ViewControllerTest, handsMessagesToTheBridgeAndAnswersToThePage) {
    showView();
    webViewHost.currentWindow = &window;

    controller->didReceiveScriptMessage({"getSystemOs", std::nullopt});
    controller->didReceiveScriptMessage({"sendLumoraTitleToNative", "Acme Support"});

    EXPECT_EQ(webViewHost.journal, Lines{R"(script window.receiveSystemOs("mac");)"});
    EXPECT_EQ(window.current, "Acme Support");
}

TEST_F(ViewControllerTest, leavesItsNamesRegisteredWhenItGoes) {
    showView();

    controller.reset();

    EXPECT_EQ(webViewHost.journal, Lines{"remove jsToNative"});
}

TEST_F(ViewControllerTest, isNotCalledByAnyoneAfterItsEnd) {
    showView();

    controller.reset();
    NativeMessageHandler::shared().handleMessageFromWebView({"getSystemOs", std::nullopt});

    EXPECT_EQ(NativeMessageHandler::shared().nativeMessageHandlerDelegate(), nullptr);
    EXPECT_EQ(NetworkMonitor::shared().networkMonitorDelegate(), nullptr);
}

TEST_F(ViewControllerTest, leavesAnotherOnesPlaceAloneWhenItGoes) {
    showView();
    ViewController next;
    next.viewDidLoad();

    controller.reset();

    EXPECT_EQ(NativeMessageHandler::shared().nativeMessageHandlerDelegate(), &next);
    EXPECT_EQ(NetworkMonitor::shared().networkMonitorDelegate(), &next);
}

// --- with the monitor behind it ---

TEST_F(ViewControllerTest, reloadsWhenTheFirstProbeIsGoodUnlessThePageHasSaidThatItRuns) {
    showView();
    paths.update(platform::PathStatus::satisfied);
    loop.runMain();
    loop.fireTimers();
    http.finishData(0, 200, "");
    loop.runMain();
    EXPECT_EQ(webViewHost.journal, Lines{kLoad});

    webViewHost.journal.clear();
    controller->didReceiveScriptMessage({"lumoraLoaded", std::nullopt});
    loop.fireTimers();
    loop.runMain();
    EXPECT_TRUE(webViewHost.journal.empty());
}

TEST_F(ViewControllerTest, showsTheOfflinePageAfterAFailedProbe) {
    showView();
    paths.update(platform::PathStatus::unsatisfied);
    loop.runMain();
    loop.fireTimers();
    http.failData(0, failure());
    loop.runMain();

    EXPECT_EQ(webViewHost.journal, Lines{kOffline});
}

TEST_F(ViewControllerTest, keepWatchingWhenAPageThatTheOfflinePageReplacedSaysThatItHasLoaded) {
    showView();
    controller->didFailedToConnect();

    controller->didReceiveScriptMessage({"lumoraLoaded", ""});

    EXPECT_EQ(probedAddresses(), Lines{"https://server.example/join"});
}

TEST_F(ViewControllerTest, watchNoLongerWhenTheJoinPageSaysThatItHasLoaded) {
    showView();
    controller->didFailedToConnect();
    controller->loadJoinPageURl();

    controller->didReceiveScriptMessage({"lumoraLoaded", ""});

    EXPECT_TRUE(probedAddresses().empty());
}

TEST_F(ViewControllerTest, keepWatchingThroughNavigationsThatTheOfflinePageOutlives) {
    showView();
    controller->didFailedToConnect();
    // Of a frame, or of the page that is going: allowed, and then they never come.
    for (const auto type : {platform::NavigationType::linkActivated, platform::NavigationType::backForward})
        EXPECT_EQ(controller->decidePolicyFor({type, "https://other.example/", true, true}),
                  platform::NavigationPolicy::allow);

    controller->didReceiveScriptMessage({"lumoraLoaded", ""});

    EXPECT_EQ(probedAddresses(), Lines{"https://server.example/join"});
}

TEST_F(ViewControllerTest, watchNoLongerWhenThePageThatTheCustomerWentBackToSaysThatItHasLoaded) {
    showView();
    controller->didFailedToConnect();
    webViewHost.address = "https://server.example/join";

    controller->didReceiveScriptMessage({"lumoraLoaded", ""});

    EXPECT_TRUE(probedAddresses().empty());
}

TEST_F(ViewControllerTest, watchAgainWhenTheCustomerGoesBackToTheOfflinePage) {
    showView();
    controller->didReceiveScriptMessage({"lumoraLoaded", ""});
    const auto goTo = [this](platform::NavigationType type, const char* url) {
        EXPECT_EQ(controller->decidePolicyFor({type, url, true, true}), platform::NavigationPolicy::allow);
    };
    goTo(platform::NavigationType::backForward, "https://server.example/join");
    goTo(platform::NavigationType::backForward, "file:///App/Resources/MisconfigurationPage.html");
    goTo(platform::NavigationType::linkActivated, "https://server.example/NoInternetPage.html");
    EXPECT_TRUE(probedAddresses().empty());

    goTo(platform::NavigationType::backForward, "file:///App/Resources/NoInternetPage.html");

    EXPECT_EQ(probedAddresses(), Lines{"https://server.example/join"});
}

TEST_F(ViewControllerTest, watchNothingForTheOfflinePageWithoutAServer) {
    showView();
    controller->didReceiveScriptMessage({"lumoraLoaded", ""});
    configure(std::nullopt, "join");

    static_cast<void>(controller->decidePolicyFor(
        {platform::NavigationType::backForward, "file:///App/Resources/NoInternetPage.html", true, true}));

    EXPECT_TRUE(probedAddresses().empty());
}

} // namespace
} // namespace lumora
