#include "alerts_fixture.h"
#include "gtk_alerts_on_screen.h"
#include "platform/linux/gui/modal_loop.h"

#include <atomic>
#include <thread>

namespace lumora::contract {

using namespace std::chrono_literals;
using platform::TimerMode;

/// What GTK's dialogs are made to do; the rest is in the suite that runs on every system.
class AlertsOnGtk : public AlertsFixture<GtkAlertsOnScreen> {
  protected:
    AlertsOnGtk() : AlertsFixture(std::make_unique<GtkAlertsOnScreen>()) {}
};

TEST_F(AlertsOnGtk, haveTheFirstButtonOnTheRightAndDestructiveWhenCritical) {
    answerOf({"m", "i", AlertStyle::critical, {"Uninstall", "Cancel"}}, [this] {
        EXPECT_EQ(screen->buttons(), (Texts{"Cancel", "Uninstall"}));
        EXPECT_FALSE(gtk_widget_has_css_class(screen->buttonWidgets()[0], "destructive-action"));
        EXPECT_TRUE(gtk_widget_has_css_class(screen->buttonWidgets()[1], "destructive-action"));
        screen->press("Cancel");
    });
}

TEST_F(AlertsOnGtk, countAsTrackedUntilTheyAreGone) {
    answerOf({"m", "i", AlertStyle::warning, {}}, [this] {
        EXPECT_TRUE(screen->tracking().active());
        screen->press("OK");
    });

    EXPECT_FALSE(screen->tracking().active());
}

TEST_F(AlertsOnGtk, endWithTheApplicationAndNoneFollows) {
    const Alert alert{"m", "i", AlertStyle::warning, {"One"}};

    EXPECT_NE(answerOf(alert, [this] { screen->tracking().endModalSessions(); }), 1000);
    EXPECT_NE(screen->alerts().runModal(alert), 1000); // would hang here for want of an answer
}

class ModalWaits : public ::testing::Test {
  protected:
    platform::linux_backend::GlibMainLoop loop;
};

TEST_F(ModalWaits, lastUntilTheWorkIsDoneWhileTheMainThreadGoesOn) {
    std::atomic<bool> ticked = false;
    const auto timer = loop.scheduleTimer(10ms, TimerMode::commonModes, [&] { ticked = true; });
    std::thread::id worker;

    EXPECT_TRUE(platform::linux_backend::waitForBackgroundWork(loop, loop.tracking(), [&] {
        worker = std::this_thread::get_id();
        while (!ticked)
            std::this_thread::yield();
    }));

    EXPECT_NE(worker, std::this_thread::get_id());
    EXPECT_FALSE(loop.tracking().active());
}

TEST_F(ModalWaits, endWithTheApplicationBeforeTheWork) {
    std::atomic<bool> released = false;
    std::atomic<bool> done = false;
    loop.asyncOnMain([this] { loop.tracking().endModalSessions(); });

    EXPECT_FALSE(platform::linux_backend::waitForBackgroundWork(loop, loop.tracking(), [&] {
        while (!released)
            std::this_thread::yield();
        done = true;
    }));

    released = true;
    const auto running = makeRunningLoop();
    EXPECT_TRUE(running->runUntil([&] { return done.load(); }, 20s));
    EXPECT_FALSE(
        running->runUntil([] { return false; }, 20ms)); // the work's own word of its end finds nobody
}

} // namespace lumora::contract
