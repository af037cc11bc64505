#include "api/network_monitor_test.h"

#include <gmock/gmock.h>

#include <array>
#include <thread>

namespace lumora {
namespace {

using platform::PathStatus;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(NetworkMonitoring, isOneInstanceForTwoConcurrentFirstCalls) {
    NetworkMonitor::resetForTesting();
    std::array<NetworkMonitor*, 2> seen{};
    {
        std::thread one([&seen] { seen[0] = &NetworkMonitor::shared(); });
        std::thread other([&seen] { seen[1] = &NetworkMonitor::shared(); });
        one.join();
        other.join();
    }

    EXPECT_NE(seen[0], nullptr);
    EXPECT_EQ(seen[0], seen[1]);
}

TEST_F(NetworkMonitoring, beginsWithNothingKnown) {
    NetworkMonitor::resetForTesting();
    auto& fresh = NetworkMonitor::shared();

    EXPECT_FALSE(fresh.isInternetAvailable());
    EXPECT_FALSE(fresh.isWebsiteReachable());
    EXPECT_EQ(fresh.networkMonitorDelegate(), nullptr);
    EXPECT_THAT(loop.timers, IsEmpty());
}

TEST_F(NetworkMonitoring, startsThePathMonitorAndWaitsForItsFirstUpdate) {
    monitor.startMonitoringReachability(kPage);

    ASSERT_EQ(paths.made.size(), 1U);
    EXPECT_EQ(paths.made[0]->starts, 1);
    EXPECT_THAT(loop.timers, IsEmpty());
    EXPECT_THAT(http.tasks, IsEmpty());
}

TEST_F(NetworkMonitoring, handlesPathUpdatesOnTheMainThreadOnly) {
    monitor.startMonitoringReachability(kPage);

    paths.update(PathStatus::satisfied);

    EXPECT_FALSE(monitor.isInternetAvailable());
    EXPECT_THAT(loop.timers, IsEmpty());
    loop.runMain();
    EXPECT_TRUE(monitor.isInternetAvailable());
    EXPECT_EQ(loop.timers.size(), 1U);
}

TEST_F(NetworkMonitoring, startsTheSamePathMonitorAgain) {
    startWithPath();
    probe(200);

    monitor.startMonitoringReachability(kOtherPage);
    loop.runMain();

    ASSERT_EQ(paths.made.size(), 1U);
    EXPECT_EQ(paths.made[0]->starts, 2);
    EXPECT_EQ(loop.timers.size(), 1U); // the rhythm goes on
    EXPECT_TRUE(loop.timers[0]->valid);
    loop.fireTimers();
    EXPECT_EQ(http.tasks.back().request.url, kOtherPage);
}

TEST_F(NetworkMonitoring, restoresAgainAfterAnotherStart) {
    startWithPath();
    probe(200);

    monitor.startMonitoringReachability(kPage);

    EXPECT_FALSE(monitor.isWebsiteReachable());
    probe(200);
    EXPECT_THAT(delegate.calls, ElementsAre("restored", "restored"));
}

TEST_F(NetworkMonitoring, dropsProbesOfAnOlderAddress) {
    startWithPath();
    loop.fireTimers();
    loop.fireTimers();
    http.finishData(0, 503, ""); // its result waits for the main thread

    monitor.startMonitoringReachability(kOtherPage);
    http.finishData(1, 200, "");
    loop.runMain();

    EXPECT_THAT(delegate.calls, IsEmpty());
    EXPECT_FALSE(monitor.isWebsiteReachable());
}

TEST_F(NetworkMonitoring, keepsAPathUpdateThatWasUnderWayWhenTheAddressWasReplaced) {
    monitor.startMonitoringReachability("com.ovratessel.example");
    paths.update(PathStatus::satisfied);

    monitor.startMonitoringReachability(kPage);
    loop.runMain();

    EXPECT_TRUE(monitor.isInternetAvailable());
    EXPECT_EQ(loop.validTimers(), 1U); // no further update would come to begin the rhythm
    probe(200);
    EXPECT_EQ(http.tasks[0].request.url, kPage);
    EXPECT_THAT(delegate.calls, ElementsAre("restored"));
}

TEST_F(NetworkMonitoring, stopsThePathMonitorAndTheTimer) {
    startWithPath();

    monitor.stopMonitoring();

    EXPECT_TRUE(paths.made[0]->cancelled);
    EXPECT_EQ(loop.validTimers(), 0U);
}

TEST_F(NetworkMonitoring, keepsWhatItKnewWhenStopped) {
    startWithPath();
    probe(200);

    monitor.stopMonitoring();

    EXPECT_TRUE(monitor.isInternetAvailable());
    EXPECT_TRUE(monitor.isWebsiteReachable());
}

TEST_F(NetworkMonitoring, dropsAProbeThatEndsAfterAStop) {
    startWithPath();
    loop.fireTimers();
    loop.fireTimers();
    http.finishData(0, 503, ""); // its result waits for the main thread

    monitor.stopMonitoring();
    http.finishData(1, 503, "");
    loop.runMain();

    EXPECT_THAT(delegate.calls, IsEmpty());
}

TEST_F(NetworkMonitoring, dropsAPathUpdateThatWasUnderWayWhenStopped) {
    monitor.startMonitoringReachability(kPage);
    paths.update(PathStatus::satisfied);

    monitor.stopMonitoring();
    loop.runMain();

    EXPECT_FALSE(monitor.isInternetAvailable());
    EXPECT_THAT(loop.timers, IsEmpty());
}

TEST_F(NetworkMonitoring, dropsAnOldPathUpdateAfterAStopAndAnotherStart) {
    monitor.startMonitoringReachability(kPage);
    paths.update(PathStatus::satisfied);

    monitor.stopMonitoring();
    monitor.startMonitoringReachability(kPage);
    loop.runMain();

    EXPECT_FALSE(monitor.isInternetAvailable());
    EXPECT_THAT(loop.timers, IsEmpty());
}

TEST_F(NetworkMonitoring, startsAfreshWithANewPathMonitorAfterAStop) {
    startWithPath();
    probe(200);
    monitor.stopMonitoring();

    startWithPath(kOtherPage);

    ASSERT_EQ(paths.made.size(), 2U);
    EXPECT_EQ(paths.made[1]->starts, 1);
    EXPECT_FALSE(paths.made[1]->cancelled);
    EXPECT_EQ(loop.validTimers(), 1U);
    probe(200);
    EXPECT_EQ(http.tasks.back().request.url, kOtherPage);
    EXPECT_THAT(delegate.calls, ElementsAre("restored", "restored"));
}

TEST_F(NetworkMonitoring, mayBeStoppedBeforeItWasStartedAndTwice) {
    monitor.stopMonitoring();
    startWithPath();
    monitor.stopMonitoring();
    monitor.stopMonitoring();

    EXPECT_EQ(paths.made.size(), 1U);
    EXPECT_EQ(loop.validTimers(), 0U);
}

TEST_F(NetworkMonitoring, mayBeStartedAgainByTheDelegateThatItTells) {
    delegate.onFailure = [this] { monitor.startMonitoringReachability(kOtherPage); };
    startWithPath();

    failProbe();
    probe(200);

    EXPECT_EQ(http.tasks.back().request.url, kOtherPage);
    EXPECT_THAT(delegate.calls, ElementsAre("failed", "restored"));
}

TEST_F(NetworkMonitoring, isNotTouchedByWhatEndsAfterIt) {
    startWithPath();
    loop.fireTimers();
    loop.fireTimers();
    paths.update(PathStatus::unsatisfied);
    http.finishData(0, 200, "");

    NetworkMonitor::resetForTesting();
    http.finishData(1, 200, "");
    loop.runMain();

    EXPECT_THAT(delegate.calls, IsEmpty());
}

} // namespace
} // namespace lumora
