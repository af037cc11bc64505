#include "webhost/web_host_test.h"

namespace lumora {
namespace {

class LoadErrors : public WebHostTest {
  protected:
    static constexpr const char* kUrl = "https://server.example/join";
    static constexpr const char* kTokenUrl = "https://server.example/join?lumora_token=t";

    LoadErrors() { showView(); }
};

TEST_F(LoadErrors, withATokenReloadOnceShowTheOfflinePageAndWatch) {
    configure("server.example", "join", "t");

    controller->handleWebViewError(failure(kTokenUrl));

    EXPECT_EQ(webViewHost.journal, (Lines{"load https://server.example/join?lumora_token=t", kOffline}));
    EXPECT_EQ(webViewHost.requests.at(0).timeout, std::chrono::seconds(10));
    EXPECT_EQ(webViewHost.requests.at(0).cachePolicy, platform::HttpCachePolicy::returnCacheDataElseLoad);
    EXPECT_EQ(streams.printed(), Lines{"URL NetTest : https://server.example/join?lumora_token=t"});
    EXPECT_EQ(probedAddresses(), Lines{kTokenUrl});
}

TEST_F(LoadErrors, withoutATokenShowTheOfflinePageAndWatchWithoutAReload) {
    controller->handleWebViewError(failure(kUrl));

    EXPECT_EQ(webViewHost.journal, Lines{kOffline});
    EXPECT_EQ(streams.printed(), Lines{"URL NetTest : https://server.example/join"});
    EXPECT_EQ(probedAddresses(), Lines{kUrl});
}

TEST_F(LoadErrors, withAnEmptyTokenReloadTheBareAddress) {
    configure("server.example", "join", "");

    controller->handleWebViewError(failure(kUrl));

    EXPECT_EQ(webViewHost.journal, (Lines{kLoad, kOffline}));
    EXPECT_EQ(probedAddresses(), Lines{kUrl});
}

TEST_F(LoadErrors, withoutAServerShowTheMisconfigurationPage) {
    configure(" ", "join", "t");
    controller->handleWebViewError(failure());
    configure("server.example", std::nullopt);
    controller->handleWebViewError(failure());

    EXPECT_EQ(webViewHost.journal, (Lines{kMisconfigured, kMisconfigured}));
    EXPECT_EQ(streams.printed(),
              Lines(2, "handleWebViewError(_:) : webServerName is null or empty — showing misconfiguration "
                       "page instead of retrying."));
}

TEST_F(LoadErrors, withAnAddressThatDoesNotParseShowTheMisconfigurationPageAndKeepTheWatch) {
    configure("server.example", "join", "a token");

    controller->handleWebViewError(failure());

    EXPECT_EQ(webViewHost.journal, Lines{kMisconfigured});
    EXPECT_EQ(streams.printed(),
              Lines{"handleWebViewError(_:) : Invalid URL Given For Running Network Monitor: "
                    "https://server.example/join?lumora_token=a token"});
    EXPECT_EQ(probedAddresses(), Lines{kUrl}); // as before
}

TEST_F(LoadErrors, withoutATokenAnAddressThatDoesNotParseIsNotLookedAt) {
    configure("server.example", "a path");

    controller->handleWebViewError(failure());

    EXPECT_EQ(webViewHost.journal, Lines{kOffline});
    EXPECT_EQ(streams.printed(), Lines{"URL NetTest : https://server.example/a path"});
    EXPECT_TRUE(probedAddresses().empty());
}

TEST_F(LoadErrors, areHandledAlikeWhateverTheirKind) {
    const platform::Error errors[] = {{"NSURLErrorDomain", -999, "cancelled", {}},
                                      {"NSURLErrorDomain", -1001, "timed out", kUrl},
                                      {"NSURLErrorDomain", -1202, "certificate", kUrl},
                                      {"WebKitErrorDomain", 102, "interrupted", "https://other.example/"}};
    for (const auto& error : errors) {
        webViewHost.journal.clear();
        controller->handleWebViewError(error);
        EXPECT_EQ(webViewHost.journal, Lines{kOffline}) << error.localizedDescription;
    }
}

TEST_F(LoadErrors, watchTheAddressOfTheMoment) {
    controller->handleWebViewError(failure());
    configure("other.example", "start");
    controller->handleWebViewError(failure());

    EXPECT_EQ(probedAddresses(), Lines{"https://other.example/start"});
}

TEST_F(LoadErrors, beforeThePageStartedPrintNothingOfTheirOwn) {
    controller->didFailProvisionalNavigation(failure());

    EXPECT_EQ(webViewHost.journal, Lines{kOffline});
    EXPECT_EQ(streams.printed(), Lines{"URL NetTest : https://server.example/join"});
}

TEST_F(LoadErrors, afterThePageStartedPrintTheirDescriptionFirst) {
    controller->didFailNavigation(failure());

    EXPECT_EQ(webViewHost.journal, Lines{kOffline});
    EXPECT_EQ(streams.printed(),
              (Lines{"webView(_:didFail:withError:) : Page failed to load with error: Could "
                     "not connect to the server.",
                     "URL NetTest : https://server.example/join"}));
}

TEST_F(LoadErrors, ofACertificateArePrintedAndTheFailedLoadFollows) {
    controller->didFailServerTrust({"NSOSStatusErrorDomain", -67843, "The certificate has expired.", {}});

    EXPECT_EQ(
        streams.printed(),
        Lines{"webView(_:didReceive:completionHandler:) : Server trust evaluation failed: "
              "Optional(Error Domain=NSOSStatusErrorDomain Code=-67843 \"The certificate has expired.\")"});
    EXPECT_TRUE(webViewHost.journal.empty());
}

TEST_F(LoadErrors, withoutTheOfflinePageLeaveTheFailedPage) {
    bundles.resources.clear();

    controller->handleWebViewError(failure());

    EXPECT_TRUE(webViewHost.journal.empty());
    EXPECT_EQ(probedAddresses(), Lines{kUrl});
}

// --- no endless cycle ---

TEST_F(LoadErrors, ofTheReloadItselfDoNotReloadAgain) {
    configure("server.example", "join", "");

    controller->handleWebViewError(failure(kUrl));
    controller->handleWebViewError({"NSURLErrorDomain", -999, "cancelled", kUrl});
    controller->handleWebViewError(failure());

    EXPECT_EQ(webViewHost.journal, (Lines{kLoad, kOffline, kOffline, kOffline}));
    EXPECT_EQ(streams.printed().size(), 3U); // and each one renews the watch
}

TEST_F(LoadErrors, ofAReloadThatTheViewReportsAtOnceComeToAnEnd) {
    configure("server.example", "join", "");

    // The view asks the policy for every load and reports each as failed, as long as there are loads.
    std::size_t reported = 0;
    controller->handleWebViewError(failure(kUrl));
    for (; reported < webViewHost.requests.size() && reported < 100; ++reported) {
        EXPECT_EQ(controller->decidePolicyFor({platform::NavigationType::other, kUrl, true, true}),
                  platform::NavigationPolicy::allow);
        controller->didFailProvisionalNavigation(failure(kUrl));
    }

    EXPECT_EQ(reported, 1U);
}

TEST_F(LoadErrors, ofANewJoinPageLoadReloadOnceAgain) {
    configure("server.example", "join", "");
    controller->handleWebViewError(failure(kUrl));
    controller->didRestoreConnection();
    webViewHost.journal.clear();

    controller->handleWebViewError(failure(kUrl));

    EXPECT_EQ(webViewHost.journal, (Lines{kLoad, kOffline}));
}

TEST_F(LoadErrors, ofTheCustomersOwnNavigationReloadOnceAgain) {
    configure("server.example", "join", "");
    for (const auto type :
         {platform::NavigationType::linkActivated, platform::NavigationType::formSubmitted,
          platform::NavigationType::backForward, platform::NavigationType::formResubmitted}) {
        controller->handleWebViewError(failure(kUrl));
        EXPECT_EQ(controller->decidePolicyFor({type, "https://other.example/", true, true}),
                  platform::NavigationPolicy::allow);
        webViewHost.journal.clear();

        controller->handleWebViewError(failure("https://other.example/"));

        EXPECT_EQ(webViewHost.journal, (Lines{kLoad, kOffline}));
    }
}

TEST_F(LoadErrors, afterNavigationsOfTheCustomersThatNeverCameDoNotReloadAgain) {
    configure("server.example", "join", "");
    controller->handleWebViewError(failure(kUrl));
    webViewHost.journal.clear();
    EXPECT_EQ(controller->decidePolicyFor(
                  {platform::NavigationType::linkActivated, "https://other.example/frame", true, true}),
              platform::NavigationPolicy::allow);

    controller->handleWebViewError(failure(kUrl));

    EXPECT_EQ(webViewHost.journal, Lines{kOffline});
}

TEST_F(LoadErrors, ofTheCustomersNavigationToTheJoinPageComeToAnEnd) {
    configure("server.example", "join", "");
    EXPECT_EQ(controller->decidePolicyFor({platform::NavigationType::linkActivated, kUrl, true, true}),
              platform::NavigationPolicy::allow);
    controller->handleWebViewError(failure(kUrl));
    EXPECT_EQ(webViewHost.journal, (Lines{kLoad, kOffline}));
    webViewHost.journal.clear();

    controller->handleWebViewError(failure(kUrl)); // of the reload, at the same address

    EXPECT_EQ(webViewHost.journal, Lines{kOffline});
}

TEST_F(LoadErrors, ofLoadsThatNobodyClickedForDoNotReloadAgain) {
    configure("server.example", "join", "");
    controller->handleWebViewError(failure(kUrl));
    webViewHost.journal.clear();
    for (const bool fromMainFrame : {true, false})
        for (const auto type : {platform::NavigationType::reload, platform::NavigationType::other}) {
            EXPECT_EQ(controller->decidePolicyFor({type, kUrl, fromMainFrame, true}),
                      platform::NavigationPolicy::allow);
            controller->handleWebViewError(failure(kUrl));
        }

    EXPECT_EQ(webViewHost.journal, Lines(4, kOffline));
}

TEST_F(LoadErrors, ofALocalPageNeitherReloadNorShowIt) {
    configure("server.example", "join", "t");

    controller->handleWebViewError(failure("file:///App/Resources/NoInternetPage.html"));

    EXPECT_TRUE(webViewHost.journal.empty());
    EXPECT_EQ(streams.printed(), Lines{std::string("URL NetTest : ") + kTokenUrl});
    EXPECT_EQ(probedAddresses(), Lines{kTokenUrl}); // the monitor brings the join page back
}

TEST_F(LoadErrors, ofAnotherFileAreLikeAnyOther) {
    controller->handleWebViewError(failure("file:///tmp/missing.html"));
    controller->handleWebViewError(failure("https://other.example/NoInternetPage.html"));

    EXPECT_EQ(webViewHost.journal, (Lines{kOffline, kOffline}));
}

TEST_F(LoadErrors, ofTheMisconfigurationPageDoNotShowItAgain) {
    configure(std::nullopt, std::nullopt);
    controller->handleWebViewError(failure("file:///App/Resources/MisconfigurationPage.html"));
    configure("server.example", "join", "a token");
    controller->handleWebViewError(failure("file:///App/Resources/MisconfigurationPage.html"));

    EXPECT_TRUE(webViewHost.journal.empty());
    EXPECT_EQ(streams.printed().size(), 2U);
}

} // namespace
} // namespace lumora
