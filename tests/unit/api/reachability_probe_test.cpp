#include "api/network_monitor_test.h"

#include <gmock/gmock.h>

namespace lumora {
namespace {

using platform::PathStatus;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::chrono_literals;

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

} // namespace
} // namespace lumora
