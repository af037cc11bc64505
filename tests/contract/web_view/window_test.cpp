#include "view_test.h"

namespace lumora::contract {

class TheWindow : public ::testing::Test {
  protected:
    void open() {
        screen->open([this] { view = screen->host().makeWebView(); });
    }

    PageServer server;
    std::unique_ptr<WindowOnScreen> screen = makeWindowOnScreen();
    std::unique_ptr<platform::WebView> view;
};

TEST_F(TheWindow, isNotThereBeforeTheViewStandsInIt) {
    EXPECT_EQ(screen->host().window(), nullptr);
    screen->open([this] {
        view = screen->host().makeWebView();
        EXPECT_EQ(screen->host().window(), nullptr);
    });
    ASSERT_NE(view, nullptr);
    EXPECT_NE(screen->host().window(), nullptr);
}

TEST_F(TheWindow, hasTheApplicationsTitleUntilAnotherIsSet) {
    open();
    EXPECT_EQ(screen->host().window()->title(), "Ovra Tessel Lumora");
    EXPECT_EQ(screen->title(), "Ovra Tessel Lumora");
    screen->host().window()->setTitle("Grüße");
    EXPECT_EQ(screen->host().window()->title(), "Grüße");
    EXPECT_EQ(screen->title(), "Grüße");
}

TEST_F(TheWindow, showsTheView) {
    server.page("/page", "<title>page</title>");
    server.page("/true", "");
    open();
    view->load({server.url("/page"), HttpCachePolicy::useProtocolCachePolicy, 60s});
    ASSERT_TRUE(runUntil([this] { return server.requests("/page") == 1; }));
    EXPECT_TRUE(runUntil([this] {
        view->evaluateJavaScript("fetch('/' + (innerWidth > 200 && innerHeight > 200))", [](auto) {});
        return server.requests("/true") > 0;
    }));
}

TEST_F(TheWindow, mayCloseBeforeItsViewGoes) {
    open();
    screen->close();
    view->load({server.url("/page"), HttpCachePolicy::useProtocolCachePolicy, 60s});
    EXPECT_TRUE(runUntil([this] { return server.requests("/page") == 1; }));
}

} // namespace lumora::contract
