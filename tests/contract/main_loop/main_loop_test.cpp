#include "platform/ports.h"
#include "platform/posix/posix_process_info.h"
#include "platform/posix/posix_standard_streams.h"
#include "running_loop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

namespace lumora::contract {

using namespace std::chrono_literals;
using platform::Timer;
using platform::TimerMode;

class MainLoopContract : public ::testing::Test {
  protected:
    MainLoopContract() {
        platform::ports().processInfo = &processInfo_;
        platform::ports().standardStreams = &streams_;
    }
    ~MainLoopContract() override { platform::ports() = {}; }

    [[nodiscard]] platform::MainLoop& loop() { return running_->loop(); }
    [[nodiscard]] bool runUntil(const RunningLoop::Condition& condition) {
        return running_->runUntil(condition, 20s);
    }
    [[nodiscard]] bool runModallyUntil(const RunningLoop::Condition& condition) {
        return running_->runModallyUntil(condition, 20s);
    }
    void runFor(std::chrono::milliseconds time) {
        static_cast<void>(running_->runUntil([] { return false; }, time));
    }

  private:
    // For the lines about what a test's work raises.
    platform::posix_backend::PosixProcessInfo processInfo_;
    platform::posix_backend::PosixStandardStreams streams_;
    std::unique_ptr<RunningLoop> running_ = makeRunningLoop();
};

TEST_F(MainLoopContract, workForTheMainThreadNeverRunsBeforeTheCallReturns) {
    bool ran = false;
    loop().asyncOnMain([&] { ran = true; });
    EXPECT_FALSE(ran);
    EXPECT_TRUE(runUntil([&] { return ran; }));
}

TEST_F(MainLoopContract, workForTheMainThreadRunsThereInTheOrderQueued) {
    std::vector<int> order;
    std::set<std::thread::id> threads;
    std::thread other([&] {
        for (int i = 0; i < 50; ++i)
            loop().asyncOnMain([&, i] {
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

TEST_F(MainLoopContract, backgroundWorkRunsConcurrentlyOffTheMainThread) {
    // They wait asleep: of pieces that keep a processor busy some systems run no more at a time than they have
    // processors for.
    constexpr int kPieces = 8;
    std::mutex mutex;
    std::condition_variable allInside;
    int inside = 0;
    std::atomic<int> met = 0;
    std::atomic<int> over = 0;
    std::atomic<bool> onMain = false;
    const auto main = std::this_thread::get_id();
    for (int i = 0; i < kPieces; ++i)
        loop().asyncInBackground([&] {
            onMain = onMain || std::this_thread::get_id() == main;
            std::unique_lock lock(mutex);
            if (++inside == kPieces)
                allInside.notify_all();
            met += allInside.wait_for(lock, 10s, [&] { return inside == kPieces; }) ? 1 : 0;
            lock.unlock();
            ++over;
        });
    EXPECT_TRUE(runUntil([&] { return over == kPieces; }));
    EXPECT_EQ(met, kPieces);
    EXPECT_FALSE(onMain);
}

TEST_F(MainLoopContract, aSerialQueueRunsOnePieceAtATimeInOrder) {
    const auto queue = loop().makeSerialQueue("com.example.queue");
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

TEST_F(MainLoopContract, workThatWaitsWhenItsQueueGoesStillRuns) {
    std::atomic<int> ran = 0;
    {
        const auto queue = loop().makeSerialQueue("com.example.queue");
        for (int i = 0; i < 20; ++i)
            queue->async([&] { ++ran; });
    }
    EXPECT_TRUE(runUntil([&] { return ran == 20; }));
}

TEST_F(MainLoopContract, whatWorkRaisesEndsThisWorkAlone) {
    const auto queue = loop().makeSerialQueue("com.example.queue");
    std::atomic<int> ran = 0;
    for (const bool raises : {true, false}) {
        const auto work = [&ran, raises] {
            if (raises)
                throw std::runtime_error("raised by a test");
            ++ran;
        };
        loop().asyncOnMain(work);
        loop().asyncInBackground(work);
        queue->async(work);
    }
    EXPECT_TRUE(runUntil([&] { return ran == 3; }));
}

TEST_F(MainLoopContract, aTimerWhoseActionRaisesFiresAgain) {
    int fired = 0;
    const auto timer = loop().scheduleTimer(10ms, TimerMode::commonModes, [&] {
        ++fired;
        throw std::runtime_error("raised by a test");
    });
    EXPECT_TRUE(runUntil([&] { return fired > 1; }));
}

TEST_F(MainLoopContract, aTimerRepeatsInItsRhythm) {
    int fired = 0;
    const auto begin = std::chrono::steady_clock::now();
    const auto timer = loop().scheduleTimer(50ms, TimerMode::defaultMode, [&] { ++fired; });
    ASSERT_TRUE(runUntil([&] { return fired == 5; }));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 250ms);
}

TEST_F(MainLoopContract, theFirstFiringComesAfterOneInterval) {
    int fired = 0;
    const auto begin = std::chrono::steady_clock::now();
    const auto timer = loop().scheduleTimer(300ms, TimerMode::commonModes, [&] { ++fired; });
    ASSERT_TRUE(runUntil([&] { return fired == 1; }));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 300ms);
}

TEST_F(MainLoopContract, aDestroyedTimerFiresNoMore) {
    int fired = 0;
    auto timer = loop().scheduleTimer(20ms, TimerMode::commonModes, [&] { ++fired; });
    ASSERT_TRUE(runUntil([&] { return fired == 1; }));
    timer.reset();
    runFor(100ms);
    EXPECT_EQ(fired, 1);
}

TEST_F(MainLoopContract, aTimerMayDestroyItselfInItsAction) {
    int fired = 0;
    std::unique_ptr<Timer> timer;
    timer = loop().scheduleTimer(10ms, TimerMode::commonModes, [&] {
        timer.reset();
        ++fired;
    });
    ASSERT_TRUE(runUntil([&] { return fired == 1; }));
    runFor(60ms);
    EXPECT_EQ(fired, 1);
}

TEST_F(MainLoopContract, onlyCommonModeTimersFireWhileAModalWindowRuns) {
    int common = 0;
    int byDefault = 0;
    const auto first = loop().scheduleTimer(20ms, TimerMode::commonModes, [&] { ++common; });
    const auto second = loop().scheduleTimer(20ms, TimerMode::defaultMode, [&] { ++byDefault; });
    ASSERT_TRUE(runModallyUntil([&] { return common >= 5; }));
    EXPECT_EQ(byDefault, 0);
    EXPECT_TRUE(runUntil([&] { return byDefault >= 2; }));
}

} // namespace lumora::contract
