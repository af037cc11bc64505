#include "platform/linux/gui/gio_path_monitors.h"
#include "view_test.h"

#include <gio/gio.h>

#include <atomic>
#include <thread>

namespace lumora::contract {

using namespace platform::linux_backend;
using platform::PathStatus;

class NetworkPaths : public ::testing::Test {
  protected:
    GioPathMonitors monitors;

    /// The system tells that something about the network has changed.
    static void announceChange() {
        GNetworkMonitor* system = g_network_monitor_get_default();
        g_signal_emit_by_name(system, "network-changed", g_network_monitor_get_network_available(system));
    }
};

TEST_F(NetworkPaths, theFirstUpdateComesRightAfterTheStartOnABackgroundThread) {
    std::atomic<int> updates = 0;
    std::atomic<bool> onMain = false;
    std::atomic<bool> satisfied = false;
    const auto main = std::this_thread::get_id();
    const auto monitor = monitors.makePathMonitor();
    monitor->setUpdateHandler([&](PathStatus status) {
        onMain = std::this_thread::get_id() == main;
        satisfied = status == PathStatus::satisfied;
        ++updates;
    });
    EXPECT_EQ(updates, 0);
    monitor->start();
    ASSERT_TRUE(runUntil([&] { return updates >= 1; }));
    EXPECT_FALSE(onMain);
    EXPECT_EQ(satisfied, g_network_monitor_get_network_available(g_network_monitor_get_default()) != FALSE);
}

TEST_F(NetworkPaths, everyChangeIsAnUpdate) {
    std::atomic<int> updates = 0;
    const auto monitor = monitors.makePathMonitor();
    monitor->setUpdateHandler([&](PathStatus) { ++updates; });
    monitor->start();
    ASSERT_TRUE(runUntil([&] { return updates == 1; }));
    announceChange();
    EXPECT_TRUE(runUntil([&] { return updates == 2; }));
}

TEST_F(NetworkPaths, aSecondStartBringsNoUpdate) {
    std::atomic<int> updates = 0;
    const auto monitor = monitors.makePathMonitor();
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
    const auto monitor = monitors.makePathMonitor();
    monitor->setUpdateHandler([&](PathStatus) { ++first; });
    monitor->start();
    ASSERT_TRUE(runUntil([&] { return first == 1; }));
    monitor->setUpdateHandler([&](PathStatus) { ++second; });
    announceChange();
    ASSERT_TRUE(runUntil([&] { return second == 1; }));
    EXPECT_EQ(first, 1);
}

TEST_F(NetworkPaths, aCancelledMonitorIsSilentAndStaysSo) {
    std::atomic<int> updates = 0;
    const auto monitor = monitors.makePathMonitor();
    monitor->setUpdateHandler([&](PathStatus) { ++updates; });
    monitor->start();
    ASSERT_TRUE(runUntil([&] { return updates == 1; }));
    monitor->cancel();
    announceChange();
    monitor->start();
    runFor(200ms);
    EXPECT_EQ(updates, 1);
}

TEST_F(NetworkPaths, aNewMonitorAfterACancelledOneStartsAfresh) {
    std::atomic<int> updates = 0;
    monitors.makePathMonitor()->cancel();
    const auto monitor = monitors.makePathMonitor();
    monitor->setUpdateHandler([&](PathStatus) { ++updates; });
    monitor->start();
    EXPECT_TRUE(runUntil([&] { return updates == 1; }));
}

} // namespace lumora::contract
