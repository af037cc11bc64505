#include "navigation_test.h"

namespace lumora::contract {

/// This engine does not tell who asks for a navigation: those of the whole page count as the main frame's, those of a frame
/// as its own. Where it is told, a frame may move the page, and the page's scripts move no frame away.
class NavigationPoliciesOfFrames : public NavigationTest {};

TEST_F(NavigationPoliciesOfFrames, aFrameCannotMoveThePageAway) {
    server.page("/frame", "<script>top.location = '" + foreign() + "'</script>");
    frame(server.url("/frame"));
    ASSERT_TRUE(waitForRequest("/frame"));
    expectThePageStays();
}

TEST_F(NavigationPoliciesOfFrames, framesMayGoAnywhere) {
    frame(foreign());
    EXPECT_TRUE(waitForRequest("/foreign"));
}

TEST_F(NavigationPoliciesOfFrames, framesMayBeRedirectedAnywhere) {
    frame(server.url("/away"));
    EXPECT_TRUE(waitForRequest("/foreign"));
}

TEST_F(NavigationPoliciesOfFrames, aScriptMayMoveAFrameAnywhere) {
    frame(server.url("/own"));
    ASSERT_TRUE(waitForRequest("/own"));
    run("frames[0].location = '" + foreign() + "'");
    EXPECT_TRUE(waitForRequest("/foreign"));
}

TEST_F(NavigationPoliciesOfFrames, thePageIsStillGuardedAfterAFrameWentAway) {
    frame(foreign());
    ASSERT_TRUE(waitForRequest("/foreign"));
    run("location.href = '" + foreign() + "?again'");
    runFor(600ms);
    EXPECT_EQ(title(), "page");
    show(server.url("/own"));
}

TEST_F(NavigationPoliciesOfFrames, aDeepLinkInAFrameIsHandedOnOnce) {
    frame("ovrajoin://session/4");
    ASSERT_TRUE(runUntil([this] { return deepLinks > 0; }));
    EXPECT_FALSE(delegate.asked.back().sourceFrameIsMainFrame);
    EXPECT_EQ(delegate.asked.back().url, "ovrajoin://session/4");
    expectThePageStays();
    EXPECT_EQ(deepLinks, 1);
}

TEST_F(NavigationPoliciesOfFrames, aDeepLinkInAFrameIsHandedOnThoughThePageMayGoThere) {
    frame("ovrajoin://localhost/6");
    ASSERT_TRUE(runUntil([this] { return deepLinks > 0; }));
    expectThePageStays();
    EXPECT_EQ(deepLinks, 1);
}

TEST_F(NavigationPoliciesOfFrames, aFramesRedirectToADeepLinkIsHandedOn) {
    server.redirect("/join", "ovrajoin://session/8");
    frame(server.url("/join"));
    ASSERT_TRUE(runUntil([this] { return deepLinks > 0; }));
    expectThePageStays();
    EXPECT_EQ(deepLinks, 1);
}

TEST_F(NavigationPoliciesOfFrames, aScriptMayClearAFrame) {
    frame(server.url("/own"));
    ASSERT_TRUE(runUntil([this] { return valueOf("frames[0].document.title") == "own"; }));
    run("frames[0].location = 'about:blank'");
    EXPECT_TRUE(runUntil([this] { return valueOf("frames[0].location.href") == "about:blank"; }));
    EXPECT_EQ(title(), "page");
}

} // namespace lumora::contract
