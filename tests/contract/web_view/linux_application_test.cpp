#include "platform/linux/gui/desktop_application.h"
#include "platform/linux/gui/main_menu.h"
#include "platform/linux/gui/webkit_host.h"
#include "view_test.h"

#include <csignal>

namespace lumora::contract {

using namespace platform::linux_backend;

/// What the desktop asks of an application; the rest is in the suites that run on every system.
class TheApplicationOnGtk : public ::testing::Test {
  protected:
    GlibMainLoop loop;
    DesktopApplication application{loop};
    WebKitHost host{loop, "ovrajoin"};
    std::unique_ptr<platform::WebView> view;
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
    platform::Window* windowAtTheEnd = nullptr;
};

TEST_F(TheApplicationOnGtk, closingTheLastWindowIsToldOnceAfterItHasGone) {
    runWithWindow([this] {
        gtk_window_close(gtkWindow());
        EXPECT_EQ(lastWindowClosed, 0);
    });
    EXPECT_EQ(lastWindowClosed, 1);
    EXPECT_EQ(windowAtTheEnd, nullptr);
}

TEST_F(TheApplicationOnGtk, theWindowStaysWhileSomethingIsModal) {
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

TEST_F(TheApplicationOnGtk, quittingDoesNotCountAsClosingTheWindow) {
    EXPECT_EQ(runWithWindow([this] {
                  g_action_group_activate_action(G_ACTION_GROUP(application.handle()), "quit", nullptr);
              }),
              0);
    EXPECT_EQ(lastWindowClosed, 0);
}

TEST_F(TheApplicationOnGtk, theEndSignalsQuit) {
    EXPECT_EQ(runWithWindow([] { std::raise(SIGTERM); }), 0);
    EXPECT_EQ(lastWindowClosed, 0);
}

TEST_F(TheApplicationOnGtk, aBrokenPipeDoesNotEndTheProcess) {
    runWithWindow([this] {
        std::raise(SIGPIPE);
        application.terminate();
    });
}

TEST_F(TheApplicationOnGtk, anOpenMenuCountsAsTracked) {
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

} // namespace lumora::contract
