#include "platform/linux/gui/glib_main_loop.h"
#include "view_test.h"

namespace lumora::contract {

using namespace platform::linux_backend;
using platform::TimerMode;

/// What the toolkit's windows and menus do to the loop; the rest is in the suite that runs on every system.
class MainLoopOnGLib : public ::testing::Test {
  protected:
    GlibMainLoop loop;
};

TEST_F(MainLoopOnGLib, workThatRunsAModalWindowDoesNotHoldBackTheRest) {
    bool second = false;
    bool sawSecond = false;
    loop.asyncOnMain([&] { sawSecond = runUntil([&] { return second; }, 5s); });
    loop.asyncOnMain([&] { second = true; });
    ASSERT_TRUE(runUntil([&] { return second; }));
    EXPECT_TRUE(sawSecond);
}

TEST_F(MainLoopOnGLib, aFiringMissedInAModalWindowHappensOnceAtItsEnd) {
    int common = 0;
    int byDefault = 0;
    const auto clock = loop.scheduleTimer(10ms, TimerMode::commonModes, [&] { ++common; });
    const auto slow = loop.scheduleTimer(400ms, TimerMode::defaultMode, [&] { ++byDefault; });
    {
        const EventTracking::ModalSession modal(loop.tracking());
        ASSERT_TRUE(runUntil([&] { return common >= 128; })); // three firings of the slow one fall due
    }
    ASSERT_TRUE(runUntil([&] { return byDefault == 1; }, 250ms));
}

TEST_F(MainLoopOnGLib, defaultModeTimersWaitWhileAMenuIsOpen) {
    bool menuOpen = true;
    int common = 0;
    int byDefault = 0;
    loop.tracking().setMenuProbe([&] { return menuOpen; });
    const auto first = loop.scheduleTimer(20ms, TimerMode::commonModes, [&] { ++common; });
    const auto second = loop.scheduleTimer(20ms, TimerMode::defaultMode, [&] { ++byDefault; });
    ASSERT_TRUE(runUntil([&] { return common >= 5; }));
    EXPECT_EQ(byDefault, 0);
    menuOpen = false;
    EXPECT_TRUE(runUntil([&] { return byDefault >= 1; }));
}

} // namespace lumora::contract
