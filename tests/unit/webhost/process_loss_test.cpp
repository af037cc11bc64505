#include "webhost/web_host_test.h"

namespace lumora {
namespace {

using namespace std::chrono_literals;

class LostProcesses : public WebHostTest {
  protected:
    static constexpr const char* kUrl = "https://server.example/join";
    static constexpr const char* kOfflineUrl = "file:///App/Resources/NoInternetPage.html";
    static constexpr const char* kMisconfiguredUrl = "file:///App/Resources/MisconfigurationPage.html";

    LostProcesses() {
        controller = std::make_unique<ViewController>([this] { return now; });
        showView();
    }

    /// What the host shows when the process of this page dies.
    Lines dies(const std::string& url) {
        webViewHost.journal.clear();
        controller->webContentProcessDidTerminate(url);
        return webViewHost.journal;
    }

    ViewController::Clock::time_point now{};
};

TEST_F(LostProcesses, ofTheJoinPageAreFailedLoads) {
    configure("server.example", "join", "t");

    controller->webContentProcessDidTerminate(kUrl);

    EXPECT_EQ(webViewHost.journal, (Lines{"load https://server.example/join?lumora_token=t", kOffline}));
    EXPECT_EQ(
        streams.printed(),
        (Lines{"webView(_:didFail:withError:) : Page failed to load with error: The Web Content process was "
               "terminated.",
               "URL NetTest : https://server.example/join?lumora_token=t"}));
    EXPECT_EQ(probedAddresses(), Lines{"https://server.example/join?lumora_token=t"});
}

TEST_F(LostProcesses, ofNoPageAtAllAreFailedLoads) {
    controller->webContentProcessDidTerminate("");

    EXPECT_EQ(webViewHost.journal, Lines{kOffline});
}

TEST_F(LostProcesses, ofTheLocalPagesBringThemBackWithoutAWord) {
    controller->webContentProcessDidTerminate(kOfflineUrl);
    controller->webContentProcessDidTerminate(kMisconfiguredUrl);

    EXPECT_EQ(webViewHost.journal, (Lines{kOffline, kMisconfigured}));
    EXPECT_EQ(streams.printed(), Lines{});
}

TEST_F(LostProcesses, ofAnotherServersPageAreFailedLoadsWhateverItsName) {
    controller->webContentProcessDidTerminate("https://elsewhere.example/NoInternetPage.html");

    EXPECT_EQ(webViewHost.journal, Lines{kOffline});
}

TEST_F(LostProcesses, ofTheJoinPageReloadItThreeTimesInTenSecondsAndThenLeaveItToTheMonitor) {
    configure("server.example", "join", "");
    for (int death = 0; death < 3; ++death) {
        EXPECT_EQ(dies(kUrl), (Lines{kLoad, kOffline})) << death;
        controller->didRestoreConnection();
        now += 3s;
    }

    EXPECT_EQ(dies(kUrl), Lines{kOffline});
    EXPECT_EQ(streams.printed().back(), "URL NetTest : https://server.example/join");
    EXPECT_EQ(probedAddresses(), Lines{kUrl});

    controller->didRestoreConnection();
    EXPECT_EQ(webViewHost.journal.back(), kLoad);
    now += 1s; // ten seconds after the first of the three
    EXPECT_EQ(dies(kUrl), (Lines{kLoad, kOffline}));
}

TEST_F(LostProcesses, bringALocalPageThatDiesAgainAtOnceBackThreeTimesInTenSecondsAndThenOnceASecond) {
    EXPECT_EQ(dies(kMisconfiguredUrl), Lines{kMisconfigured});
    for (int death = 0; death < 3; ++death)
        EXPECT_EQ(dies(kMisconfiguredUrl), Lines{kMisconfigured}) << death;
    const auto before = loop.timers.size();

    EXPECT_EQ(dies(kMisconfiguredUrl), Lines{});

    ASSERT_EQ(loop.timers.size(), before + 1);
    EXPECT_EQ(loop.timers.back()->interval, 1s);
    loop.timers.back()->action();
    EXPECT_EQ(webViewHost.journal, Lines{kMisconfigured});
    EXPECT_FALSE(loop.timers.back()->valid) << "once is enough";
    EXPECT_EQ(streams.printed(), Lines{});
}

TEST_F(LostProcesses, bringNoLocalPageBackOverWhatIsShownMeanwhile) {
    for (int death = 0; death < 5; ++death)
        dies(kOfflineUrl);
    EXPECT_TRUE(loop.timers.back()->valid);
    controller->didRestoreConnection();
    EXPECT_FALSE(loop.timers.back()->valid);

    dies(kOfflineUrl);
    EXPECT_TRUE(loop.timers.back()->valid);
    controller->didFailedToConnect();
    EXPECT_FALSE(loop.timers.back()->valid);
}

TEST_F(LostProcesses, ofALocalPageDoNotCountForTheJoinPage) {
    configure("server.example", "join", "");
    for (int death = 0; death < 4; ++death)
        dies(kOfflineUrl);

    EXPECT_EQ(dies(kUrl), (Lines{kLoad, kOffline}));
}

TEST_F(LostProcesses, bringALocalPageThatHasLivedBackAtOnceEveryTime) {
    for (int death = 0; death < 10; ++death) {
        controller->webContentProcessDidTerminate(kOfflineUrl);
        now += 1s;
    }

    EXPECT_EQ(webViewHost.journal, Lines(10, kOffline));
}

} // namespace
} // namespace lumora
