#include "api/network_monitor.h"
#include "fakes/core_test.h"

#include <gmock/gmock.h>

#include <array>
#include <thread>

namespace lumora {
namespace {

using platform::PathStatus;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::chrono_literals;

constexpr const char* kPage = "https://com.ovratessel.example/join";
constexpr const char* kOtherPage = "https://eu.ovratessel.example/join";

class KeptCallbacks final : public NetworkMonitorDelegate {
  public:
    std::vector<std::string> calls;
    std::function<void()> onFailure = [] {};
    void didRestoreConnection() override { calls.emplace_back("restored"); }
    void didFailedToConnect() override {
        calls.emplace_back("failed");
        onFailure();
    }
};

class NetworkMonitoring : public CoreTest {
  protected:
    NetworkMonitoring() { monitor.setNetworkMonitorDelegate(&delegate); }

    void startWithPath(const std::string& url = kPage) {
        monitor.startMonitoringReachability(url);
        paths.update(PathStatus::satisfied);
        loop.runMain();
    }

    /// Lets the probe timer fire once and the probe end with a status.
    void probe(long status) {
        loop.fireTimers();
        http.finishData(http.tasks.size() - 1, status, "");
        loop.runMain();
    }

    void failProbe() {
        loop.fireTimers();
        http.failData(http.tasks.size() - 1, {"NSURLErrorDomain", -1009, "Offline.", {}});
        loop.runMain();
    }

    KeptCallbacks delegate;
    NetworkMonitor& monitor = NetworkMonitor::shared();
};

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

TEST_F(NetworkMonitoring, probesEveryTwoSecondsInTheDefaultMode) {
    startWithPath();

    ASSERT_EQ(loop.timers.size(), 1U);
    EXPECT_EQ(loop.timers[0]->interval, 2.0s);
    EXPECT_EQ(loop.timers[0]->mode, platform::TimerMode::defaultMode);
    EXPECT_THAT(http.tasks, IsEmpty()); // the first probe comes with the timer, not before
    loop.fireTimers();
    loop.fireTimers();
    EXPECT_EQ(http.tasks.size(), 2U); // a probe does not wait for the one before
}

TEST_F(NetworkMonitoring, restartsTheRhythmWithEveryPathUpdate) {
    startWithPath();

    paths.update(PathStatus::unsatisfied);
    loop.runMain();

    EXPECT_FALSE(monitor.isInternetAvailable());
    ASSERT_EQ(loop.timers.size(), 2U);
    EXPECT_FALSE(loop.timers[0]->valid);
    EXPECT_TRUE(loop.timers[1]->valid);
}

TEST_F(NetworkMonitoring, sendsTheProbeAsItsServersKnowIt) {
    startWithPath();

    loop.fireTimers();

    ASSERT_EQ(http.tasks.size(), 1U);
    const auto& task = http.tasks[0];
    EXPECT_EQ(task.request.url, kPage);
    EXPECT_EQ(task.request.method, "GET");
    EXPECT_EQ(task.request.timeout, 10s);
    EXPECT_EQ(task.request.cachePolicy, platform::HttpCachePolicy::returnCacheDataElseLoad);
    EXPECT_THAT(
        task.request.headers,
        ElementsAre(std::pair<std::string, std::string>(
            "User-Agent", "Mozilla/5.0 (Macintosh; Intel Mac OS X 10_15_7) AppleWebKit/537.36 (KHTML, like "
                          "Gecko) Chrome/91.0.4472.124 Safari/537.36")));
    EXPECT_EQ(task.configuration.kind, platform::HttpSessionKind::standard);
    EXPECT_EQ(task.configuration.resourceTimeout, 10s);
    EXPECT_TRUE(task.configuration.waitsForConnectivity);
    EXPECT_EQ(task.configuration.redirects, platform::HttpRedirects::stop);
    EXPECT_EQ(task.configuration.minimumTls, std::nullopt);
    EXPECT_TRUE(task.invalidated);
}

TEST_F(NetworkMonitoring, restoresOnceForAServerThatAnswers) {
    startWithPath();

    probe(200);
    probe(200);
    probe(200);

    EXPECT_THAT(delegate.calls, ElementsAre("restored"));
    EXPECT_TRUE(monitor.isWebsiteReachable());
}

TEST_F(NetworkMonitoring, tellsEveryFailureUntilTheServerAnswersAgain) {
    startWithPath();

    probe(200);
    failProbe();
    failProbe();
    EXPECT_FALSE(monitor.isWebsiteReachable());
    probe(503);
    probe(200);
    probe(200);

    EXPECT_THAT(delegate.calls, ElementsAre("restored", "failed", "failed", "failed", "restored"));
}

TEST_F(NetworkMonitoring, countsExactly200Only) {
    startWithPath();

    for (const long status : {201L, 204L, 302L, 304L, 404L, 503L})
        probe(status);

    EXPECT_THAT(delegate.calls, ElementsAre("failed", "failed", "failed", "failed", "failed", "failed"));
}

TEST_F(NetworkMonitoring, countsA200WithAnErrorAsFailure) {
    startWithPath();
    loop.fireTimers();

    http.tasks[0].dataCompletion(
        {{},
         platform::HttpResponse{200, kPage},
         platform::Error{"NSURLErrorDomain", -1005, "The connection was lost.", {}}});
    loop.runMain();

    EXPECT_THAT(delegate.calls, ElementsAre("failed"));
}

TEST_F(NetworkMonitoring, countsNoResponseAtAllAsFailure) {
    startWithPath();
    loop.fireTimers();

    http.tasks[0].dataCompletion({"", {}, {}});
    loop.runMain();

    EXPECT_THAT(delegate.calls, ElementsAre("failed"));
}

TEST_F(NetworkMonitoring, appliesProbeResultsOnTheMainThreadOnly) {
    startWithPath();
    loop.fireTimers();

    http.finishData(0, 200, "");

    EXPECT_FALSE(monitor.isWebsiteReachable());
    EXPECT_THAT(delegate.calls, IsEmpty());
    loop.runMain();
    EXPECT_TRUE(monitor.isWebsiteReachable());
    EXPECT_THAT(delegate.calls, ElementsAre("restored"));
}

TEST_F(NetworkMonitoring, keepsItsStateWithoutADelegate) {
    monitor.setNetworkMonitorDelegate(nullptr);
    startWithPath();

    probe(200);
    EXPECT_TRUE(monitor.isWebsiteReachable());
    probe(500);
    EXPECT_FALSE(monitor.isWebsiteReachable());
}

TEST_F(NetworkMonitoring, neverProbesAnAddressThatDoesNotParse) {
    for (const std::string address : {"", "https://two words/", "https://[broken/"}) {
        startWithPath(address);
        loop.fireTimers();
    }

    EXPECT_THAT(http.tasks, IsEmpty());
    EXPECT_THAT(delegate.calls, IsEmpty());
}

TEST_F(NetworkMonitoring, leavesAnAddressWithoutASchemeToTheSession) {
    startWithPath("com.ovratessel.example");

    failProbe();

    EXPECT_EQ(http.tasks[0].request.url, "com.ovratessel.example");
    EXPECT_THAT(delegate.calls, ElementsAre("failed"));
}

TEST_F(NetworkMonitoring, probesWhateverThePathsStatus) {
    monitor.startMonitoringReachability(kPage);
    paths.update(PathStatus::unsatisfied);
    loop.runMain();

    probe(200);

    EXPECT_THAT(delegate.calls, ElementsAre("restored")); // the probe drives the delegate, not the path
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
