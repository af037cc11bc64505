#include "navigation_test.h"

namespace lumora::contract {

class NavigationPolicies : public NavigationTest {};

TEST_F(NavigationPolicies, judgeTheHostsOwnLoadAsItIsWritten) {
    delegate.policy = [](const NavigationAction& action) {
        return action.url.value_or("").find("LocalHost") != std::string::npos ? NavigationPolicy::allow
                                                                              : NavigationPolicy::cancel;
    };
    load(server.url("/own", "LocalHost"));
    ASSERT_TRUE(waitForTitle("own"));
    ASSERT_EQ(delegate.asked.size(), 1U);
    EXPECT_EQ(delegate.asked.front().url, server.url("/own", "LocalHost"));
}

TEST_F(NavigationPolicies, theHostsOwnLoadIsJudgedOnceAsTheMainFrames) {
    show(server.url("/own"));
    ASSERT_EQ(delegate.asked.size(), 1U);
    EXPECT_EQ(delegate.asked.front().type, NavigationType::other);
    EXPECT_TRUE(delegate.asked.front().sourceFrameIsMainFrame);
    EXPECT_TRUE(delegate.asked.front().hasTargetFrame);
    EXPECT_EQ(delegate.asked.front().url, server.url("/own"));
}

TEST_F(NavigationPolicies, aForeignLoadOfTheHostIsNotEvenAskedFor) {
    load(foreign());
    expectThePageStays();
}

TEST_F(NavigationPolicies, aScriptMayMoveThePageToAnAllowedAddress) {
    run("location.href = '/own'");
    EXPECT_TRUE(waitForTitle("own"));
}

TEST_F(NavigationPolicies, aScriptCannotMoveThePageAway) {
    run("location.href = '" + foreign() + "'");
    expectThePageStays();
}

TEST_F(NavigationPolicies, aMetaRefreshCannotMoveThePageAway) {
    run("var m = document.createElement('meta'); m.httpEquiv = 'refresh'; m.content = '0;url=" + foreign() +
        "'; document.head.appendChild(m)");
    expectThePageStays();
}

TEST_F(NavigationPolicies, aRedirectOfTheHostsLoadCannotMoveThePageAway) {
    load(server.url("/away"));
    ASSERT_TRUE(waitForRequest("/away"));
    expectThePageStays();
}

TEST_F(NavigationPolicies, aRedirectOfAScriptsLoadCannotMoveThePageAway) {
    run("location.href = '/away'");
    ASSERT_TRUE(waitForRequest("/away"));
    expectThePageStays();
}

TEST_F(NavigationPolicies, linksAndFormsMayGoAnywhere) {
    click(foreign());
    ASSERT_TRUE(waitForTitle("foreign"));
    ASSERT_TRUE(waitUntilLoaded());
    ASSERT_FALSE(delegate.asked.empty());
    EXPECT_EQ(delegate.asked.front().type, NavigationType::linkActivated);

    delegate.asked.clear();
    run("var f = document.createElement('form'); f.method = 'post'; f.action = '" +
        server.url("/own", kForeign) + "'; document.body.appendChild(f); f.submit()");
    ASSERT_TRUE(waitForTitle("own"));
    EXPECT_EQ(delegate.asked.front().type, NavigationType::formSubmitted);
}

TEST_F(NavigationPolicies, goingBackHasItsOwnType) {
    click(foreign());
    ASSERT_TRUE(waitForTitle("foreign"));
    delegate.asked.clear();
    run("history.back()");
    ASSERT_TRUE(waitForTitle("page"));
    ASSERT_EQ(delegate.asked.size(), 1U);
    EXPECT_EQ(delegate.asked.front().type, NavigationType::backForward);
}

TEST_F(NavigationPolicies, aReloadIsAskedAboutAndMayBeRefused) {
    click(foreign());
    ASSERT_TRUE(waitForTitle("foreign"));
    delegate.asked.clear();
    run("location.reload()");
    ASSERT_TRUE(runUntil([this] { return !delegate.asked.empty(); }));
    EXPECT_EQ(delegate.asked.front().type, NavigationType::reload);
    runFor(400ms);
    EXPECT_EQ(server.requests("/foreign"), 1);
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(NavigationPolicies, anAllowedReloadHappens) {
    run("location.reload()");
    EXPECT_TRUE(waitForRequest("/page", 2));
}

TEST_F(NavigationPolicies, aCancelledDeepLinkKeepsThePage) {
    click("ovrajoin://session/1");
    ASSERT_TRUE(runUntil([this] { return !delegate.asked.empty(); }));
    EXPECT_EQ(delegate.asked.front().url, "ovrajoin://session/1");
    expectThePageStays();
}

TEST_F(NavigationPolicies, aScriptsDeepLinkOfTheWholePageIsOnlyCancelled) {
    run("location.href = 'ovrajoin://session/3'");
    ASSERT_TRUE(runUntil([this] { return !delegate.asked.empty(); }));
    expectThePageStays();
    EXPECT_EQ(deepLinks, 0);
}

TEST_F(NavigationPolicies, aPictureIsNoDeepLink) {
    run("document.body.innerHTML = '<img src=\"ovrajoin://session/5\" onerror=\"document.title = 1\">'");
    ASSERT_TRUE(waitForTitle("1"));
    EXPECT_EQ(deepLinks, 0);
}

TEST_F(NavigationPolicies, aDeepLinkThatThePageMayGoToFails) {
    run("location.href = 'ovrajoin://localhost/7'");
    ASSERT_TRUE(runUntil([this] { return delegate.reportedFailures() > 0; }));
    EXPECT_EQ(delegate.provisionalFailures.size(), 1U);
    EXPECT_EQ(delegate.provisionalFailures.front().code, -1002);
    EXPECT_EQ(deepLinks, 0);
}

TEST_F(NavigationPolicies, aRedirectOfThePageToADeepLinkIsOnlyCancelled) {
    server.redirect("/join", "ovrajoin://session/9");
    run("location.href = '/join'");
    ASSERT_TRUE(waitForRequest("/join"));
    expectThePageStays();
    EXPECT_EQ(deepLinks, 0);
}

TEST_F(NavigationPolicies, aBlankPageGivesWayToThePageThatItReplaced) {
    for (const char* how : {"location.href = 'about:blank'", "location.replace('about:blank')",
                            "location.replace('about:srcdoc')", "window.open('about:blank', '_self')"}) {
        show(server.url("/own"));
        run(how);
        runFor(300ms);
        ASSERT_TRUE(waitForTitle("own")) << how;
        EXPECT_EQ(delegate.reportedFailures(), 0U) << how;
    }
}

TEST_F(NavigationPolicies, aPageThatBlanksItselfAgainAndAgainStays) {
    server.page("/blanks", "<title>blanks</title><script>onload = () => setTimeout(() => "
                           "location.replace('about:blank#' + Math.random()))</script>");
    load(server.url("/blanks"));
    ASSERT_TRUE(waitForRequest("/blanks", 1));
    runFor(1s);
    EXPECT_EQ(title(), "blanks");
    EXPECT_LE(server.requests("/blanks"), 2);
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(NavigationPolicies, aPageMadeByAScriptOfAForeignPageDoesNotReplaceIt) {
    click(foreign());
    ASSERT_TRUE(waitForTitle("foreign"));
    run("location.href = URL.createObjectURL(new Blob(['<title>made</title>'], {type: 'text/html'}))");
    runFor(400ms);
    EXPECT_EQ(title(), "foreign");
    EXPECT_EQ(valueOf("location.pathname"), "/foreign");
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(NavigationPolicies, blankFramesStay) {
    frame("about:blank");
    expectThePageStays();
    EXPECT_EQ(valueOf("frames.length"), "1");
}

TEST_F(NavigationPolicies, aLinkThatAsksForAWindowIsHandedToTheHost) {
    click("/own", "_blank");
    ASSERT_TRUE(runUntil([this] { return !delegate.newWindows.empty(); }));
    EXPECT_FALSE(delegate.newWindows.front().hasTargetFrame);
    EXPECT_EQ(delegate.newWindows.front().url, server.url("/own"));
    ASSERT_EQ(delegate.asked.size(), 1U);
    EXPECT_EQ(delegate.asked.front().type, NavigationType::linkActivated);
    EXPECT_FALSE(delegate.asked.front().hasTargetFrame);
}

TEST_F(NavigationPolicies, aCancelledLinkThatAsksForAWindowGetsNone) {
    click("ovrajoin://session/2", "_blank");
    ASSERT_TRUE(runUntil([this] { return !delegate.asked.empty(); }));
    runFor(300ms);
    EXPECT_TRUE(delegate.newWindows.empty());
}

TEST_F(NavigationPolicies, aScriptMayAskForAWindowWithoutAClick) {
    run("window.open('/own')");
    ASSERT_TRUE(runUntil([this] { return !delegate.newWindows.empty(); }));
    EXPECT_EQ(delegate.newWindows.front().url, server.url("/own"));
    EXPECT_FALSE(delegate.newWindows.front().hasTargetFrame);
}

TEST_F(NavigationPolicies, theHostMayLoadTheRequestOfANewWindowInTheView) {
    delegate.onNewWindow = [this](const NavigationAction& action) { load(action.url.value_or("")); };
    click("/own", "_blank");
    EXPECT_TRUE(waitForTitle("own"));
}

TEST_F(NavigationPolicies, theRequestOfAForeignNewWindowIsNotLoaded) {
    delegate.onNewWindow = [this](const NavigationAction& action) { load(action.url.value_or("")); };
    click(foreign(), "_blank");
    ASSERT_TRUE(runUntil([this] { return !delegate.newWindows.empty(); }));
    expectThePageStays();
}

} // namespace lumora::contract
