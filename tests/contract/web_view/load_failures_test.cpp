#include "silent_listener.h"
#include "view_test.h"

namespace lumora::contract {

namespace {

constexpr const char* kUrlDomain = "NSURLErrorDomain";
constexpr const char* kUnknownProcess = "the engine does not tell which process shows the page";

} // namespace

class FailedLoads : public ViewTest {
  protected:
    [[nodiscard]] bool waitForFailure() {
        return runUntil([this] { return delegate.reportedFailures() > 0; });
    }
    void expectOneProvisionalFailure(int code, const std::string& url) {
        ASSERT_TRUE(waitForFailure());
        runFor(300ms); // a second report would come now
        ASSERT_EQ(delegate.provisionalFailures.size(), 1U);
        EXPECT_TRUE(delegate.failures.empty());
        const Error& error = delegate.provisionalFailures.front();
        EXPECT_EQ(error.domain, kUrlDomain);
        EXPECT_EQ(error.code, code);
        EXPECT_EQ(error.failingUrl, url);
        EXPECT_FALSE(error.localizedDescription.empty());
    }
};

TEST_F(FailedLoads, aRefusedConnectionFailsProvisionally) {
    const std::string url = "http://localhost:" + std::to_string(refusingPort()) + "/join";
    load(url);
    expectOneProvisionalFailure(-1004, url);
}

TEST_F(FailedLoads, anUnknownHostFailsProvisionally) {
    load("http://no-such-host.invalid/join");
    expectOneProvisionalFailure(-1003, "http://no-such-host.invalid/join");
}

TEST_F(FailedLoads, anAnswerThatHangsTimesOut) {
    server.hang("/hang");
    load(server.url("/hang"), kPatience);
    ASSERT_TRUE(runUntil([this] { return server.requests("/hang") == 1; }));
    expectOneProvisionalFailure(-1001, server.url("/hang"));
    EXPECT_EQ(delegate.provisionalFailures.front().localizedDescription, "The request timed out.");
}

TEST_F(FailedLoads, aHandshakeThatHangsTimesOut) {
    const SilentListener silent;
    const std::string url = "https://localhost:" + std::to_string(silent.port()) + "/join";
    load(url, 1s);
    expectOneProvisionalFailure(-1001, url);
}

TEST_F(FailedLoads, anUntrustedCertificateFailsTheTrustFirst) {
    const PageServer secure(PageServer::Protocol::httpsWithUnknownAuthority);
    load(secure.url("/join"));
    expectOneProvisionalFailure(kRefusedCertificateCode, secure.url("/join"));
    ASSERT_EQ(delegate.trustFailures.size(), 1U);
    EXPECT_EQ(delegate.trustFailures.front().domain, "NSOSStatusErrorDomain");
    EXPECT_EQ(delegate.events, (std::vector<std::string>{"trust", "provisional"}));
    EXPECT_EQ(secure.requests("/join"), 0);
}

TEST_F(FailedLoads, anUnknownSchemeFails) {
    load("unheard-of://session");
    expectOneProvisionalFailure(-1002, "unheard-of://session");
}

TEST_F(FailedLoads, aDeepLinkThatTheWholePageIsToShowFails) {
    load("ovrajoin://session");
    expectOneProvisionalFailure(-1002, "ovrajoin://session");
}

TEST_F(FailedLoads, anErrorStatusIsNoFailure) {
    load(server.url("/missing"));
    ASSERT_TRUE(runUntil([this] { return server.requests("/missing") == 1; }));
    runFor(500ms);
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(FailedLoads, aPageThatIsCutOffFailsAfterItsFirstBytesStood) {
    server.cutOff("/cut", "<title>cut</title>" + std::string(100'000, 'x'));
    load(server.url("/cut"));
    ASSERT_TRUE(waitForFailure());
    ASSERT_EQ(delegate.failures.size(), 1U);
    EXPECT_TRUE(delegate.provisionalFailures.empty());
    EXPECT_EQ(delegate.failures.front().domain, kUrlDomain);
    EXPECT_EQ(delegate.failures.front().code, -1005);
    EXPECT_EQ(delegate.failures.front().failingUrl, server.url("/cut"));
}

TEST_F(FailedLoads, aLoadThatTheHostReplacesIsNoFailure) {
    server.hang("/hang");
    server.page("/page", "<title>page</title>");
    load(server.url("/hang"), kPatience);
    ASSERT_TRUE(runUntil([this] { return server.requests("/hang") == 1; }));
    show(server.url("/page"));
    outwaitPatience();
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(FailedLoads, loadsThatReplaceEachOtherAtOnceShowTheLast) {
    server.page("/first", "<title>first</title>");
    server.page("/second", "<title>second</title>");
    server.page("/third", "<title>third</title>");
    load(server.url("/first"));
    load(server.url("/second"));
    load(server.url("/third"));
    ASSERT_TRUE(waitForTitle("third"));
    EXPECT_EQ(delegate.reportedFailures(), 0U);
    EXPECT_EQ(server.requests("/second"), 0);
}

TEST_F(FailedLoads, aReloadOfTheSameAddressReplacesTheHungOne) {
    server.hang("/page");
    load(server.url("/page"));
    ASSERT_TRUE(runUntil([this] { return server.requests("/page") == 1; }));
    server.page("/page", "<title>page</title>");
    load(server.url("/page"));
    ASSERT_TRUE(waitForTitle("page"));
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(FailedLoads, aLoadThatThePageCancelsIsAFailure) {
    server.page("/page", "<title>page</title>");
    server.hang("/hang");
    show(server.url("/page"));
    load(server.url("/hang"));
    ASSERT_TRUE(runUntil([this] { return server.requests("/hang") == 1; }));
    run("window.stop()");
    expectOneProvisionalFailure(-999, server.url("/hang"));
}

TEST_F(FailedLoads, aHostThatLoadsAgainOnFailureGetsEachFailureOnce) {
    const std::string url = "http://localhost:" + std::to_string(refusingPort()) + "/join";
    server.page("/page", "<title>page</title>");
    delegate.onFailure = [&] {
        if (delegate.reportedFailures() < 3)
            load(url);
        else
            load(server.url("/page"));
    };
    load(url);
    ASSERT_TRUE(waitForTitle("page"));
    EXPECT_EQ(delegate.provisionalFailures.size(), 3U);
}

TEST_F(FailedLoads, aTimeOutHandledByAnotherLoadIsReportedOnce) {
    server.hang("/hang");
    server.page("/page", "<title>page</title>");
    delegate.onFailure = [&] { load(server.url("/page")); };
    load(server.url("/hang"), 1s);
    ASSERT_TRUE(waitForTitle("page"));
    runFor(300ms);
    EXPECT_EQ(delegate.provisionalFailures.size(), 1U);
}

TEST_F(FailedLoads, aPageWhoseProcessDiesIsReportedLost) {
    server.page("/page", "<title>page</title>");
    show(server.url("/page"));
    if (!killProcess())
        GTEST_SKIP() << kUnknownProcess;
    ASSERT_TRUE(runUntil([this] { return !delegate.lostPages.empty(); }));
    EXPECT_EQ(delegate.lostPages, std::vector{server.url("/page")});
    EXPECT_EQ(delegate.reportedFailures(), 0U);
    load(server.url("/page"));
    EXPECT_TRUE(runUntil([this] { return server.requests("/page") == 2; }));
}

TEST_F(FailedLoads, aPageThatItsProcessWasToShowIsReportedLostOnce) {
    server.page("/page", "<title>page</title>");
    server.hang("/hang");
    show(server.url("/page"));
    load(server.url("/hang"), kPatience);
    ASSERT_TRUE(runUntil([this] { return server.requests("/hang") == 1; }));
    if (!killProcess())
        GTEST_SKIP() << kUnknownProcess;
    ASSERT_TRUE(runUntil([this] { return !delegate.lostPages.empty(); }));
    outwaitPatience();
    EXPECT_EQ(delegate.lostPages, std::vector{server.url("/hang")});
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(FailedLoads, aPlaceInThePageThatStandsIsNotWaitedFor) {
    server.page("/app", "<title>app</title>");
    show(server.url("/app") + "#join");
    run("location.hash = 'session'");
    ASSERT_TRUE(runUntil([this] { return valueOf("location.hash") == "#session"; }));
    load(server.url("/app") + "#join", kPatience);
    ASSERT_TRUE(runUntil([this] { return valueOf("location.hash") == "#join"; }));
    outwaitPatience();
    EXPECT_EQ(delegate.reportedFailures(), 0U);
    EXPECT_EQ(view.address(), server.url("/app") + "#join");
}

} // namespace lumora::contract
