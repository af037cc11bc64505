#include "view_test.h"

namespace lumora::contract {

class TheWindow : public ::testing::Test {
  protected:
    void open() {
        screen->open([this] { view = screen->host().makeWebView(); });
    }

    void load(const std::string& path) {
        view->load({server.url(path), HttpCachePolicy::useProtocolCachePolicy, 60s});
    }

    /// Whether the page comes to find this of itself.
    [[nodiscard]] bool finds(const std::string& condition) {
        const int before = server.requests("/true");
        return runUntil([&] {
            view->evaluateJavaScript("fetch('/' + Boolean(" + condition + "))", [](auto) {});
            runFor(20ms);
            return server.requests("/true") > before;
        });
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
    open();
    load("/page");
    EXPECT_TRUE(finds("document.title == 'page' && innerWidth > 200 && innerHeight > 200"));
}

TEST_F(TheWindow, letsItsUserZoomAndReload) {
    server.page("/page", "<title>page</title>");
    open();
    load("/page");
    ASSERT_TRUE(finds("document.title == 'page' && innerWidth > 200 && (window.full = innerWidth)"));
    screen->zoomIn();
    EXPECT_TRUE(finds("innerWidth < full")); // in points of the page, which are larger now
    screen->showActualSize();
    EXPECT_TRUE(finds("innerWidth >= full"));
    screen->reload();
    EXPECT_TRUE(runUntil([this] { return server.requests("/page") == 2; }));
}

TEST_F(TheWindow, mayCloseBeforeItsViewGoes) {
    open();
    screen->close();
    load("/page");
    EXPECT_TRUE(runUntil([this] { return server.requests("/page") == 1; }));
}

} // namespace lumora::contract
