#include "network_world.h"
#include "running_loop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace lumora::contract {

using namespace std::chrono_literals;
using platform::PathStatus;

class NetworkPaths : public ::testing::Test {
  protected:
    [[nodiscard]] bool runUntil(const RunningLoop::Condition& condition) {
        return running_->runUntil(condition, 20s);
    }
    void runFor(std::chrono::milliseconds time) {
        static_cast<void>(running_->runUntil([] { return false; }, time));
    }

    std::unique_ptr<platform::PathMonitors> monitors_ = makePathMonitors();

  private:
    std::unique_ptr<RunningLoop> running_ = makeRunningLoop(); // by which some systems tell of changes
};

TEST_F(NetworkPaths, theFirstUpdateComesRightAfterTheStartOnABackgroundThread) {
    std::atomic<int> updates = 0;
    std::atomic<bool> onMain = false;
    std::atomic<bool> satisfied = false;
    const auto main = std::this_thread::get_id();
    const auto monitor = monitors_->makePathMonitor();
    monitor->setUpdateHandler([&](PathStatus status) {
        onMain = std::this_thread::get_id() == main;
        satisfied = status == PathStatus::satisfied;
        ++updates;
    });
    EXPECT_EQ(updates, 0);
    monitor->start();
    ASSERT_TRUE(runUntil([&] { return updates >= 1; }));
    EXPECT_FALSE(onMain);
    EXPECT_EQ(satisfied, hasNetworkPath());
}

TEST_F(NetworkPaths, everyChangeIsAnUpdate) {
    std::atomic<int> updates = 0;
    const auto monitor = monitors_->makePathMonitor();
    monitor->setUpdateHandler([&](PathStatus) { ++updates; });
    monitor->start();
    ASSERT_TRUE(runUntil([&] { return updates == 1; }));
    const int before = updates;
    if (!announceChange())
        GTEST_SKIP() << "no test changes this machine's network";
    EXPECT_TRUE(runUntil([&] { return updates > before; }));
}

TEST_F(NetworkPaths, aSecondStartBringsNoUpdate) {
    std::atomic<int> updates = 0;
    const auto monitor = monitors_->makePathMonitor();
    monitor->setUpdateHandler([&](PathStatus) { ++updates; });
    monitor->start();
    monitor->start();
    ASSERT_TRUE(runUntil([&] { return updates >= 1; }));
    runFor(200ms);
    EXPECT_EQ(updates, 1);
}

TEST_F(NetworkPaths, aReplacedHandlerIsToldOfLaterUpdates) {
    std::atomic<int> first = 0;
    std::atomic<int> second = 0;
    const auto monitor = monitors_->makePathMonitor();
    monitor->setUpdateHandler([&](PathStatus) { ++first; });
    monitor->start();
    ASSERT_TRUE(runUntil([&] { return first == 1; }));
    monitor->setUpdateHandler([&](PathStatus) { ++second; });
    if (!announceChange())
        GTEST_SKIP() << "no test changes this machine's network";
    ASSERT_TRUE(runUntil([&] { return second == 1; }));
    EXPECT_EQ(first, 1);
}

TEST_F(NetworkPaths, ofTwoHandlersOnlyTheLaterIsTold) {
    std::atomic<int> first = 0;
    std::atomic<int> second = 0;
    const auto monitor = monitors_->makePathMonitor();
    monitor->setUpdateHandler([&](PathStatus) { ++first; });
    monitor->setUpdateHandler([&](PathStatus) { ++second; });
    monitor->start();
    ASSERT_TRUE(runUntil([&] { return second >= 1; }));
    EXPECT_EQ(first, 0);
}

TEST_F(NetworkPaths, aCancelledMonitorIsSilentAndStaysSo) {
    std::atomic<int> updates = 0;
    const auto monitor = monitors_->makePathMonitor();
    monitor->setUpdateHandler([&](PathStatus) { ++updates; });
    monitor->start();
    ASSERT_TRUE(runUntil([&] { return updates == 1; }));
    monitor->cancel();
    static_cast<void>(announceChange());
    monitor->start();
    runFor(200ms);
    EXPECT_EQ(updates, 1);
}

TEST_F(NetworkPaths, aNewMonitorAfterACancelledOneStartsAfresh) {
    std::atomic<int> updates = 0;
    monitors_->makePathMonitor()->cancel();
    const auto monitor = monitors_->makePathMonitor();
    monitor->setUpdateHandler([&](PathStatus) { ++updates; });
    monitor->start();
    EXPECT_TRUE(runUntil([&] { return updates == 1; }));
}

} // namespace lumora::contract
