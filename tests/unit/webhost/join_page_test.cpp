#include "webhost/web_host_test.h"

#include <csignal>

namespace lumora {
namespace {

class JoinPage : public WebHostTest {
  protected:
    JoinPage() { showView(); }
};

TEST_F(JoinPage, isLoadedWithTheTokenOfTheMoment) {
    controller->loadJoinPageURl();
    configure("other.example", "start", "t");
    controller->loadJoinPageURl();

    EXPECT_EQ(webViewHost.journal, (Lines{kLoad, "load https://other.example/start?lumora_token=t"}));
    EXPECT_EQ(webViewHost.requests.at(0).timeout, std::chrono::seconds(10));
    EXPECT_EQ(webViewHost.requests.at(0).cachePolicy, platform::HttpCachePolicy::returnCacheDataElseLoad);
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(JoinPage, withoutServerOrPathIsTheMisconfigurationPage) {
    configure("server.example", " ");
    controller->loadJoinPageURl();
    configure(std::nullopt, "join");
    controller->loadJoinPageURl();

    EXPECT_EQ(webViewHost.journal, (Lines{kMisconfigured, kMisconfigured}));
    EXPECT_EQ(
        streams.printed(),
        Lines(2, "loadJoinPageURl() : webServerName is null or empty — showing misconfiguration page."));
}

TEST_F(JoinPage, whoseAddressDoesNotParseIsTheMisconfigurationPageWithoutALine) {
    configure("server.example", "join", "not a token");

    controller->loadJoinPageURl();

    EXPECT_EQ(webViewHost.journal, Lines{kMisconfigured});
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(JoinPage, localPagesMayReadTheFolderTheyLieIn) {
    bundles.resources["NoInternetPage.html"] = "/Other Place/pages/NoInternetPage.html";

    controller->loadStaticNoInternetPage();
    controller->loadMisconfigurationPage();

    EXPECT_EQ(
        webViewHost.journal,
        (Lines{"file /Other Place/pages/NoInternetPage.html reading /Other Place/pages", kMisconfigured}));
}

TEST_F(JoinPage, staysWhenTheLocalPageIsMissing) {
    bundles.resources.clear();

    controller->loadStaticNoInternetPage();
    controller->loadMisconfigurationPage();

    EXPECT_TRUE(webViewHost.journal.empty());
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(JoinPage, isLoadedAgainWhenTheConnectionIsRestored) {
    controller->didRestoreConnection();

    EXPECT_EQ(webViewHost.journal, Lines{kLoad});
    EXPECT_EQ(session.localOvraAppVersion(), "0"); // the installed agent was looked for
    ASSERT_EQ(http.tasks.size(), 1U);
    EXPECT_NE(http.tasks[0].request.url.value_or("").find("/api/v1/customer_plugin/check_update?"),
              std::string::npos);
}

TEST_F(JoinPage, isLoadedOnlyAfterBothChecksWhenTheConnectionIsRestored) {
    Lines logged;
    std::size_t requests = 0;
    webViewHost.onLoad = [&] {
        logged = streams.logged();
        requests = http.tasks.size();
    };

    controller->didRestoreConnection();

    ASSERT_EQ(logged.size(), 3U);
    EXPECT_TRUE(logged[1].starts_with("-[OvraAppUpgrader ovraAppVersionCheck] : Ovra app not found"));
    EXPECT_TRUE(logged[2].starts_with("+[ApiHandler getInstance]")); // the update check comes second
    EXPECT_EQ(requests, 1U);
}

TEST_F(JoinPage, restorationPrintsItsLineOnlyForAGoodAnswer) {
    controller->didRestoreConnection();
    http.finishData(0, 200, "{}");
    EXPECT_EQ(streams.printed(),
              Lines{"didRestoreConnection() : Updateing webview since the network is restored."});

    forgetLines();
    controller->didRestoreConnection();
    http.finishData(1, 503, "");
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(JoinPage, restorationWithoutAServerShowsTheMisconfigurationPageAndAsksNothing) {
    configure(std::nullopt, "join");

    controller->didRestoreConnection();

    EXPECT_EQ(webViewHost.journal, Lines{kMisconfigured});
    EXPECT_EQ(session.localOvraAppVersion(), std::nullopt);
    EXPECT_TRUE(http.tasks.empty());
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(JoinPage, restorationWithAnAddressThatDoesNotParseStillChecksForUpdates) {
    configure("server.example", "join page");

    controller->didRestoreConnection();

    EXPECT_EQ(webViewHost.journal, Lines{kMisconfigured});
    EXPECT_EQ(http.tasks.size(), 1U);
}

TEST_F(JoinPage, givesWayToTheOfflinePageWhenAProbeFails) {
    controller->didFailedToConnect();

    EXPECT_EQ(webViewHost.journal, Lines{kOffline});
}

TEST_F(JoinPage, givesWayToTheMisconfigurationPageWhenAProbeFailsWithoutAServer) {
    configure("server.example", std::nullopt);

    controller->didFailedToConnect();

    EXPECT_EQ(webViewHost.journal, Lines{kMisconfigured});
    EXPECT_TRUE(streams.printed().empty());
}

using JoinPageDeathTest = WebHostTest;

TEST_F(JoinPageDeathTest, needsTheView) {
    EXPECT_EXIT(controller->loadJoinPageURl(), ::testing::KilledBySignal(SIGABRT), "");
}

} // namespace
} // namespace lumora
