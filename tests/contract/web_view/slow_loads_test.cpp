#include "support/temporary_folder.h"
#include "support/test_server.h"
#include "view_test.h"

namespace lumora::contract {

namespace {

constexpr auto kPause = 1700ms; // four of them are longer than the time-out

/// A page of which everything comes slowly, and pages that stop amid themselves.
void serveSlowly(Connection& connection, const std::string& head) {
    const auto asksFor = [&](const char* path) { return head.starts_with(std::string("GET ") + path + " "); };
    const auto sendPage = [&](const std::string& first, const std::string& last) {
        connection.send("HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=utf-8\r\nContent-Length: " +
                        std::to_string(first.size() + last.size()) + "\r\n\r\n" + first);
        for (const char byte : last) {
            std::this_thread::sleep_for(kPause);
            connection.send(std::string(1, byte));
        }
    };
    const std::string enoughToBeShown = "<title>begun</title>" + std::string(4000, 'x');
    if (asksFor("/slow")) {
        std::this_thread::sleep_for(kPause);
        connection.answer("", "302 Found", "Location: /slower\r\n");
    } else if (asksFor("/slower")) {
        std::this_thread::sleep_for(kPause);
        sendPage(enoughToBeShown, "12");
    } else if (asksFor("/stalls")) {
        connection.send(
            "HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=utf-8\r\nContent-Length: 8000\r\n\r\n" +
            enoughToBeShown);
        connection.awaitClient();
    } else if (asksFor("/picture")) {
        connection.awaitClient();
    } else {
        connection.answer("<title>whole</title><img src=/picture>", "200 OK",
                          "Content-Type: text/html; charset=utf-8\r\n");
    }
}

} // namespace

/// A load's time counts from the last that came of the page itself.
class SlowLoads : public ViewTest {
  protected:
    TestServer slowServer{serveSlowly};

    /// No load's time goes by with the engine's beginning.
    void SetUp() override {
        server.page("/first", "<title>first</title>");
        show(server.url("/first"));
    }

    [[nodiscard]] std::string foreign() const { return slowServer.url("/page", "127.0.0.1"); }

    void refuseForeignServers() {
        delegate.policy = [](const NavigationAction& action) {
            return action.url.value_or("").find("localhost") != std::string::npos ? NavigationPolicy::allow
                                                                                  : NavigationPolicy::cancel;
        };
    }
};

TEST_F(SlowLoads, aPageThatStallsTimesOutThoughItStands) {
    load(slowServer.url("/stalls"), kPatience);
    ASSERT_TRUE(runUntil([this] { return delegate.reportedFailures() > 0; }));
    runFor(300ms); // a second report would come now
    EXPECT_EQ(title(), "begun");
    EXPECT_EQ(delegate.events, std::vector<std::string>{"committed"});
    EXPECT_EQ(delegate.failures.front().domain, "NSURLErrorDomain");
    EXPECT_EQ(delegate.failures.front().code, -1001);
    EXPECT_EQ(delegate.failures.front().localizedDescription, "The request timed out.");
    EXPECT_EQ(delegate.failures.front().failingUrl, slowServer.url("/stalls"));
}

TEST_F(SlowLoads, whateverComesOfThePagePutsItsTimeOutOff) {
    load(slowServer.url("/slow"), kPatience);
    ASSERT_TRUE(waitForTitle("begun"));
    ASSERT_TRUE(waitUntilLoaded());
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(SlowLoads, aPageThatHasAllComeWaitsForItsPicturesAsLongAsTheyTake) {
    load(slowServer.url("/page"), kPatience);
    ASSERT_TRUE(waitForTitle("whole"));
    outwaitPatience();
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(SlowLoads, itIsTheSameWhereThePagesProcessChangesAndForAPlaceInThePage) {
    const TemporaryFolder folder;
    writeFile(folder.path() / "Offline.html", "<title>offline</title>");
    view.loadFile((folder.path() / "Offline.html").string(), folder.path().string());
    ASSERT_TRUE(waitForTitle("offline"));
    for (const std::string& url : {slowServer.url("/page"), foreign() + "#place"}) {
        load(url, kPatience);
        ASSERT_TRUE(runUntil([&] { return title() == "whole" && valueOf("location.href") == url; }));
        outwaitPatience();
        EXPECT_EQ(delegate.reportedFailures(), 0U) << url;
    }
}

TEST_F(SlowLoads, aStalledPageTimesOutOnceThoughItTriesToLeave) {
    refuseForeignServers();
    load(slowServer.url("/stalls"), kPatience);
    ASSERT_TRUE(waitForTitle("begun"));
    run("location.href = '" + foreign() + "'");
    ASSERT_TRUE(runUntil([this] { return delegate.reportedFailures() > 0; }));
    load(slowServer.url("/page"));
    ASSERT_TRUE(waitForTitle("whole"));
    runFor(300ms);
    EXPECT_EQ(delegate.events, std::vector<std::string>{"committed"});
    EXPECT_EQ(delegate.failures.front().code, -1001);
}

TEST_F(SlowLoads, aLoadThatHangsFailsThoughThePageTriesToLeaveMeanwhile) {
    refuseForeignServers();
    load(slowServer.url("/page"));
    ASSERT_TRUE(waitForTitle("whole"));
    run("location.href = '" + foreign() + "'");
    load(slowServer.url("/picture"), 1s);
    EXPECT_TRUE(runUntil([this] { return delegate.reportedFailures() > 0; }));
}

TEST_F(SlowLoads, aPageThatTriesToLeaveBeforeItsPicturesHaveComeIsNoFailure) {
    refuseForeignServers();
    load(slowServer.url("/page"));
    ASSERT_TRUE(waitForTitle("whole"));
    run("location.href = '" + foreign() + "'");
    runFor(600ms);
    EXPECT_EQ(title(), "whole");
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(SlowLoads, aStalledPageGivesWayToTheNext) {
    load(slowServer.url("/stalls"), kPatience);
    ASSERT_TRUE(waitForTitle("begun"));
    load(slowServer.url("/page"), 20s);
    ASSERT_TRUE(waitForTitle("whole"));
    outwaitPatience();
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

} // namespace lumora::contract
