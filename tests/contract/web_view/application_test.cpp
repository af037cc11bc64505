#include "platform/linux/gui/desktop_application.h"
#include "platform/linux/gui/main_menu.h"
#include "platform/linux/gui/webkit_host.h"
#include "view_test.h"

#include <csignal>
#include <thread>

namespace lumora::platform::linux_backend::testing {

class TheApplication : public ::testing::Test {
  protected:
    GlibMainLoop loop;
    DesktopApplication application{loop};
    WebKitHost host{loop, "ovrajoin"};
    std::unique_ptr<WebView> view;
    char name[6] = "tests";

    /// Launches with a window, runs the steps on the running loop, and returns the exit status.
    int runWithWindow(const std::function<void()>& steps) {
        return application.run(name, [this, steps] {
            application.setMainMenu(
                installMenuBar(application.handle(), {[this] { application.terminate(); }, [] {}}));
            view = host.makeWebView();
            host.openWindow(application.handle(), "/nowhere", [this] {
                ++lastWindowClosed;
                windowAtTheEnd = host.window();
                application.terminate();
            });
            loop.asyncOnMain(steps);
        });
    }

    [[nodiscard]] GtkWindow* gtkWindow() const {
        return gtk_application_get_active_window(application.handle());
    }

    int lastWindowClosed = 0;
    Window* windowAtTheEnd = nullptr;
};

TEST_F(TheApplication, thereIsNoWindowBeforeTheViewStandsInOne) {
    application.run(name, [this] {
        view = host.makeWebView();
        EXPECT_EQ(host.window(), nullptr);
        host.openWindow(application.handle(), "/nowhere", [] {});
        EXPECT_NE(host.window(), nullptr);
        application.terminate();
    });
}

TEST_F(TheApplication, theWindowsTitleIsTheApplicationsUntilSet) {
    runWithWindow([this] {
        EXPECT_EQ(host.window()->title(), "Ovra Tessel Lumora");
        host.window()->setTitle("Grüße");
        EXPECT_EQ(host.window()->title(), "Grüße");
        EXPECT_STREQ(gtk_window_get_title(gtkWindow()), "Grüße");
        application.terminate();
    });
}

TEST_F(TheApplication, closingTheLastWindowIsToldOnceAfterItHasGone) {
    runWithWindow([this] {
        gtk_window_close(gtkWindow());
        EXPECT_EQ(lastWindowClosed, 0);
    });
    EXPECT_EQ(lastWindowClosed, 1);
    EXPECT_EQ(windowAtTheEnd, nullptr);
}

TEST_F(TheApplication, theWindowStaysWhileSomethingIsModal) {
    runWithWindow([this] {
        auto modal = std::make_unique<EventTracking::ModalSession>(loop.tracking());
        gtk_window_close(gtkWindow());
        EXPECT_NE(host.window(), nullptr);
        modal.reset();
        gtk_window_close(gtkWindow());
        EXPECT_EQ(host.window(), nullptr);
    });
    EXPECT_EQ(lastWindowClosed, 1);
}

TEST_F(TheApplication, theViewOutlivesItsWindow) {
    application.run(name, [this] {
        view = host.makeWebView();
        host.openWindow(application.handle(), "/nowhere", [this] {
            view->load({"http://localhost:1/", HttpCachePolicy::useProtocolCachePolicy, 60s});
            application.terminate();
        });
        loop.asyncOnMain([this] { gtk_window_close(gtkWindow()); });
    });
}

TEST_F(TheApplication, quittingDoesNotCountAsClosingTheWindow) {
    EXPECT_EQ(runWithWindow([this] {
                  g_action_group_activate_action(G_ACTION_GROUP(application.handle()), "quit", nullptr);
              }),
              0);
    EXPECT_EQ(lastWindowClosed, 0);
}

TEST_F(TheApplication, terminateMayBeCalledFromAnyThreadAndReturnsFirst) {
    std::atomic<bool> returned = false;
    std::thread caller;
    runWithWindow([&] {
        caller = std::thread([&] {
            application.terminate();
            returned = true;
        });
    });
    caller.join();
    EXPECT_TRUE(returned);
}

TEST_F(TheApplication, theEndSignalsQuit) {
    EXPECT_EQ(runWithWindow([] { std::raise(SIGTERM); }), 0);
    EXPECT_EQ(lastWindowClosed, 0);
}

TEST_F(TheApplication, aBrokenPipeDoesNotEndTheProcess) {
    runWithWindow([this] {
        std::raise(SIGPIPE);
        application.terminate();
    });
}

TEST_F(TheApplication, anOpenMenuCountsAsTracked) {
    runWithWindow([this] {
        EXPECT_FALSE(loop.tracking().active());
        auto* window = GTK_WIDGET(gtkWindow());
        ASSERT_TRUE(runUntil([&] { return gtk_widget_get_mapped(window) != FALSE; }));
        GtkWidget* popover = gtk_popover_new();
        gtk_widget_set_parent(popover, gtk_window_get_child(GTK_WINDOW(window)));
        gtk_popover_popup(GTK_POPOVER(popover));
        EXPECT_TRUE(runUntil([this] { return loop.tracking().active(); }));
        gtk_popover_popdown(GTK_POPOVER(popover));
        EXPECT_TRUE(runUntil([this] { return !loop.tracking().active(); }));
        gtk_widget_unparent(popover);
        application.terminate();
    });
}

} // namespace lumora::platform::linux_backend::testing
