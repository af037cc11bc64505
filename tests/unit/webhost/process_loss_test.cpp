#include "webhost/web_host_test.h"

namespace lumora {
namespace {

using namespace std::chrono_literals;

class LostProcesses : public WebHostTest {
  protected:
    static constexpr const char* kUrl = "https://server.example/join";
    static constexpr const char* kOfflineUrl = "file:///App/Resources/NoInternetPage.html";

    LostProcesses() {
        controller = std::make_unique<ViewController>([this] { return now; });
        showView();
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
    controller->webContentProcessDidTerminate("file:///App/Resources/MisconfigurationPage.html");

    EXPECT_EQ(webViewHost.journal, (Lines{kOffline, kMisconfigured}));
    EXPECT_EQ(streams.printed(), Lines{});
}

TEST_F(LostProcesses, bringALocalPageBackThreeTimesInTenSeconds) {
    for (int death = 0; death < 4; ++death) {
        controller->webContentProcessDidTerminate(kOfflineUrl);
        now += 3s;
    }

    EXPECT_EQ(webViewHost.journal, Lines(3, kOffline));
    EXPECT_EQ(streams.printed().back(), "URL NetTest : https://server.example/join")
        << "and then leave it to the watch";

    now += 1s; // ten seconds after the first of the three
    controller->webContentProcessDidTerminate(kOfflineUrl);
    EXPECT_EQ(webViewHost.journal, Lines(4, kOffline));
}

TEST_F(LostProcesses, farApartBringALocalPageBackEveryTime) {
    for (int death = 0; death < 10; ++death) {
        controller->webContentProcessDidTerminate(kOfflineUrl);
        now += 5s;
    }

    EXPECT_EQ(webViewHost.journal, Lines(10, kOffline));
}

} // namespace
} // namespace lumora
