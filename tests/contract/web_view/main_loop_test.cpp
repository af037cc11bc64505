#include "view_test.h"

#include <atomic>
#include <mutex>
#include <set>
#include <thread>

namespace lumora::platform::linux_backend::testing {

class MainLoopOnGLib : public ::testing::Test {
  protected:
    GlibMainLoop loop;
};

TEST_F(MainLoopOnGLib, workForTheMainThreadNeverRunsBeforeTheCallReturns) {
    bool ran = false;
    loop.asyncOnMain([&] { ran = true; });
    EXPECT_FALSE(ran);
    EXPECT_TRUE(runUntil([&] { return ran; }));
}

TEST_F(MainLoopOnGLib, workForTheMainThreadRunsThereInTheOrderQueued) {
    std::vector<int> order;
    std::set<std::thread::id> threads;
    std::thread other([&] {
        for (int i = 0; i < 50; ++i)
            loop.asyncOnMain([&, i] {
                order.push_back(i);
                threads.insert(std::this_thread::get_id());
            });
    });
    other.join();
    ASSERT_TRUE(runUntil([&] { return order.size() == 50; }));
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
    EXPECT_EQ(threads, std::set{std::this_thread::get_id()});
}

TEST_F(MainLoopOnGLib, workThatRunsAModalWindowDoesNotHoldBackTheRest) {
    bool second = false;
    bool sawSecond = false;
    loop.asyncOnMain([&] { sawSecond = runUntil([&] { return second; }, 5s); });
    loop.asyncOnMain([&] { second = true; });
    ASSERT_TRUE(runUntil([&] { return second; }));
    EXPECT_TRUE(sawSecond);
}

TEST_F(MainLoopOnGLib, backgroundWorkRunsConcurrentlyOffTheMainThread) {
    constexpr int kPieces = 8;
    std::atomic<int> inside = 0;
    std::atomic<int> met = 0;
    std::atomic<bool> onMain = false;
    const auto main = std::this_thread::get_id();
    for (int i = 0; i < kPieces; ++i)
        loop.asyncInBackground([&] {
            onMain = onMain || std::this_thread::get_id() == main;
            ++inside;
            const auto deadline = std::chrono::steady_clock::now() + 10s;
            while (inside < kPieces && std::chrono::steady_clock::now() < deadline)
                std::this_thread::yield();
            met += inside == kPieces ? 1 : 0;
        });
    EXPECT_TRUE(runUntil([&] { return met == kPieces; }));
    EXPECT_FALSE(onMain);
}

TEST_F(MainLoopOnGLib, aSerialQueueRunsOnePieceAtATimeInOrder) {
    const auto queue = loop.makeSerialQueue("com.example.queue");
    std::mutex mutex;
    std::vector<int> order;
    std::atomic<int> inside = 0;
    std::atomic<bool> overlapped = false;
    for (int i = 0; i < 100; ++i)
        queue->async([&, i] {
            overlapped = overlapped || ++inside != 1;
            {
                const std::lock_guard lock(mutex);
                order.push_back(i);
            }
            --inside;
        });
    ASSERT_TRUE(runUntil([&] {
        const std::lock_guard lock(mutex);
        return order.size() == 100;
    }));
    EXPECT_FALSE(overlapped);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST_F(MainLoopOnGLib, workThatWaitsWhenItsQueueGoesStillRuns) {
    std::atomic<int> ran = 0;
    {
        const auto queue = loop.makeSerialQueue("com.example.queue");
        for (int i = 0; i < 20; ++i)
            queue->async([&] { ++ran; });
    }
    EXPECT_TRUE(runUntil([&] { return ran == 20; }));
}

TEST_F(MainLoopOnGLib, aTimerRepeatsInItsRhythm) {
    int fired = 0;
    const auto begin = std::chrono::steady_clock::now();
    const auto timer = loop.scheduleTimer(50ms, TimerMode::defaultMode, [&] { ++fired; });
    ASSERT_TRUE(runUntil([&] { return fired == 5; }));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 250ms);
}

TEST_F(MainLoopOnGLib, theFirstFiringComesAfterOneInterval) {
    int fired = 0;
    const auto timer = loop.scheduleTimer(300ms, TimerMode::commonModes, [&] { ++fired; });
    runFor(100ms);
    EXPECT_EQ(fired, 0);
    EXPECT_TRUE(runUntil([&] { return fired == 1; }));
}

TEST_F(MainLoopOnGLib, aDestroyedTimerFiresNoMore) {
    int fired = 0;
    auto timer = loop.scheduleTimer(20ms, TimerMode::commonModes, [&] { ++fired; });
    ASSERT_TRUE(runUntil([&] { return fired == 1; }));
    timer.reset();
    runFor(100ms);
    EXPECT_EQ(fired, 1);
}

TEST_F(MainLoopOnGLib, aTimerMayDestroyItselfInItsAction) {
    int fired = 0;
    std::unique_ptr<Timer> timer;
    timer = loop.scheduleTimer(10ms, TimerMode::commonModes, [&] {
        timer.reset();
        ++fired;
    });
    ASSERT_TRUE(runUntil([&] { return fired == 1; }));
    runFor(60ms);
    EXPECT_EQ(fired, 1);
}

TEST_F(MainLoopOnGLib, onlyCommonModeTimersFireWhileAModalWindowRuns) {
    int common = 0;
    int byDefault = 0;
    const auto first = loop.scheduleTimer(20ms, TimerMode::commonModes, [&] { ++common; });
    const auto second = loop.scheduleTimer(20ms, TimerMode::defaultMode, [&] { ++byDefault; });
    {
        const EventTracking::ModalSession modal(loop.tracking());
        ASSERT_TRUE(runUntil([&] { return common >= 5; }));
        EXPECT_EQ(byDefault, 0);
    }
    EXPECT_TRUE(runUntil([&] { return byDefault >= 2; }));
}

TEST_F(MainLoopOnGLib, aFiringMissedInAModalWindowHappensOnceAtItsEnd) {
    int common = 0;
    int byDefault = 0;
    const auto clock = loop.scheduleTimer(10ms, TimerMode::commonModes, [&] { ++common; });
    const auto slow = loop.scheduleTimer(100ms, TimerMode::defaultMode, [&] { ++byDefault; });
    {
        const EventTracking::ModalSession modal(loop.tracking());
        ASSERT_TRUE(runUntil([&] { return common >= 32; })); // three firings of the slow one fall due
    }
    ASSERT_TRUE(runUntil([&] { return byDefault == 1; }, 50ms));
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

} // namespace lumora::platform::linux_backend::testing
