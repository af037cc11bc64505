#include "webhost/navigation_policy.h"
#include "webhost/web_host_test.h"

namespace lumora {
namespace {

using platform::NavigationAction;
using platform::NavigationPolicy;
using platform::NavigationType;

constexpr NavigationType kFreeTypes[] = {NavigationType::linkActivated, NavigationType::formSubmitted,
                                         NavigationType::backForward, NavigationType::formResubmitted};

class NavigationPolicyTest : public WebHostTest {
  protected:
    NavigationPolicyTest() { showView(); }

    NavigationPolicy decide(NavigationType type, std::optional<std::string> url, bool fromMainFrame = true) {
        return controller->decidePolicyFor({type, std::move(url), fromMainFrame, true});
    }

    /// The two kinds that are held to the server: reloads of any frame, and main-frame loads without a click.
    void expectGuarded(const std::optional<std::string>& url, NavigationPolicy expected) {
        EXPECT_EQ(decide(NavigationType::reload, url, true), expected) << url.value_or("(absent)");
        EXPECT_EQ(decide(NavigationType::reload, url, false), expected) << url.value_or("(absent)");
        EXPECT_EQ(decide(NavigationType::other, url, true), expected) << url.value_or("(absent)");
    }

    void expectFree(const std::optional<std::string>& url, NavigationPolicy expected) {
        for (const auto type : kFreeTypes)
            for (const bool fromMainFrame : {true, false})
                EXPECT_EQ(decide(type, url, fromMainFrame), expected) << url.value_or("(absent)");
        EXPECT_EQ(decide(NavigationType::other, url, false), expected) << url.value_or("(absent)");
    }
};

TEST_F(NavigationPolicyTest, letsGuardedLoadsOntoTheServer) {
    expectGuarded("https://server.example/join?a=b", NavigationPolicy::allow);
}

TEST_F(NavigationPolicyTest, letsGuardedLoadsThroughThatMerelyContainTheServersName) {
    for (const char* url :
         {"https://server.example.elsewhere.example/", "https://other.example/server.example",
          "http://other.example/?next=server.example", "file:///server.example"})
        expectGuarded(url, NavigationPolicy::allow);
}

TEST_F(NavigationPolicyTest, cancelsGuardedLoadsOfOtherSites) {
    for (const char* url : {"https://other.example/", "https://SERVER.EXAMPLE/join",
                            "https://server-example/", "about:blank", "", "ovrajoin:1"})
        expectGuarded(url, NavigationPolicy::cancel);
    EXPECT_TRUE(workspace.opened.empty());
}

TEST_F(NavigationPolicyTest, cancelsGuardedLoadsWithoutAnAddress) {
    expectGuarded(std::nullopt, NavigationPolicy::cancel);
}

TEST_F(NavigationPolicyTest, knowsTheLocalPagesByTheirNamesWhereverTheyLie) {
    for (const char* url :
         {"file:///App/Resources/NoInternetPage.html", "file:///App/Resources/MisconfigurationPage.html",
          "https://other.example/NoInternetPage.html?x", "https://other.example/#MisconfigurationPage.html"})
        expectGuarded(url, NavigationPolicy::allow);
    expectGuarded("file:///App/Resources/nointernetpage.html", NavigationPolicy::cancel);
    expectGuarded("file:///App/Resources/OtherPage.html", NavigationPolicy::cancel);
}

TEST_F(NavigationPolicyTest, withoutAServerKnowsOnlyTheLocalPages) {
    configure("server.example", " ");
    expectGuarded("https://server.example/join", NavigationPolicy::cancel);
    expectGuarded("file:///App/Resources/MisconfigurationPage.html", NavigationPolicy::allow);

    configure("", "join"); // an empty name would be part of every address
    expectGuarded("https://other.example/", NavigationPolicy::cancel);
}

TEST_F(NavigationPolicyTest, asksForTheServerOfTheMoment) {
    configure("other.example", "join");

    expectGuarded("https://server.example/join", NavigationPolicy::cancel);
    expectGuarded("https://other.example/join", NavigationPolicy::allow);
}

TEST_F(NavigationPolicyTest, comparesTheServersNameWithItsBlanks) {
    configure(" server.example", "join");

    expectGuarded("https://server.example/join", NavigationPolicy::cancel);
}

TEST_F(NavigationPolicyTest, letsTheCustomerGoAnywhereInTheView) {
    for (const char* url :
         {"https://other.example/", "http://server.example/", "mailto:a@b", "tel:1", "about:blank"})
        expectFree(url, NavigationPolicy::allow);
    EXPECT_TRUE(workspace.opened.empty());
}

TEST_F(NavigationPolicyTest, allowsFreeNavigationsWithoutAnAddressOrAScheme) {
    for (const auto& url : {std::optional<std::string>(), std::optional<std::string>(""),
                            std::optional<std::string>("ovrajoin"), std::optional<std::string>("/ovrajoin:1"),
                            std::optional<std::string>("?ovrajoin:1"), std::optional<std::string>("path/x")})
        expectFree(url, NavigationPolicy::allow);
    EXPECT_TRUE(workspace.opened.empty());
}

TEST_F(NavigationPolicyTest, handsDeepLinksToTheSystem) {
    EXPECT_EQ(decide(NavigationType::linkActivated, "ovrajoin://123456789?a=b"), NavigationPolicy::cancel);

    EXPECT_EQ(workspace.opened, Lines{"ovrajoin://123456789?a=b"});
    EXPECT_EQ(streams.printed(), Lines{"handleDeepLink(_:) : Handling deep link: ovrajoin://123456789?a=b"});
    EXPECT_TRUE(webViewHost.journal.empty());
}

TEST_F(NavigationPolicyTest, handsDeepLinksOverFromEveryFreeNavigation) {
    expectFree("ovrajoin:1", NavigationPolicy::cancel);

    EXPECT_EQ(workspace.opened.size(), 9U);
}

TEST_F(NavigationPolicyTest, handsDeepLinksOverThatAStrictParserWouldRefuse) {
    EXPECT_EQ(decide(NavigationType::linkActivated, "ovrajoin:a|b c"), NavigationPolicy::cancel);

    EXPECT_EQ(workspace.opened, Lines{"ovrajoin:a|b c"});
}

TEST_F(NavigationPolicyTest, ignoresWhetherADeepLinkCouldBeOpened) {
    workspace.openSucceeds = false;

    EXPECT_EQ(decide(NavigationType::linkActivated, "ovrajoin:1"), NavigationPolicy::cancel);
    EXPECT_EQ(streams.printed().size(), 1U);
}

TEST_F(NavigationPolicyTest, comparesTheDeepLinksSchemeExactly) {
    for (const char* url : {"OVRAJOIN://1", "ovraJoin:1", "ovrajoins:1", "xovrajoin:1"})
        expectFree(url, NavigationPolicy::allow);
    EXPECT_TRUE(workspace.opened.empty());
}

TEST_F(NavigationPolicyTest, openDeepLinksWithoutAServerToo) {
    configure(std::nullopt, std::nullopt);

    expectFree("ovrajoin:1", NavigationPolicy::cancel);
    expectFree("https://other.example/", NavigationPolicy::allow);
}

TEST_F(NavigationPolicyTest, verdictNeedsNothingButActionAndServer) {
    const NavigationAction load{NavigationType::other, "https://server.example/", true, true};

    EXPECT_EQ(judgeNavigation(load, "server.example"), NavigationVerdict::allow);
    EXPECT_EQ(judgeNavigation(load, "other.example"), NavigationVerdict::cancel);
    EXPECT_EQ(judgeNavigation(load, std::nullopt), NavigationVerdict::cancel);
}

// --- new windows ---

TEST_F(NavigationPolicyTest, opensANewWindowsPageInTheSameView) {
    controller->createWebViewFor({NavigationType::linkActivated, "https://other.example/a", true, false});

    EXPECT_EQ(webViewHost.journal, Lines{"load https://other.example/a"});
    EXPECT_EQ(webViewHost.requests.at(0).cachePolicy, platform::HttpCachePolicy::useProtocolCachePolicy);
    EXPECT_EQ(webViewHost.requests.at(0).timeout, std::chrono::seconds(60));
}

TEST_F(NavigationPolicyTest, doesNothingForANewWindowThatHasAFrameOrNoAddress) {
    controller->createWebViewFor({NavigationType::linkActivated, "https://other.example/a", true, true});
    controller->createWebViewFor({NavigationType::other, std::nullopt, true, false});

    EXPECT_TRUE(webViewHost.journal.empty());
}

} // namespace
} // namespace lumora
