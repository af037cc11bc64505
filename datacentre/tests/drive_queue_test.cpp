#include "server/drive_queue.h"

#include <gtest/gtest.h>

#include <future>

namespace datacentre {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kLong{10000};
const auto kThere = [] { return true; };

TEST(DriveQueue, carriesAScriptToThePageAndItsResultBack) {
    DriveQueue queue;
    auto page = std::async(std::launch::async, [&] {
        const auto poll = queue.next("one", kLong, kThere);
        EXPECT_EQ(poll.kind, DriveQueue::PollKind::script);
        EXPECT_TRUE(queue.finish(poll.script.id, poll.script.text + "!", std::nullopt));
    });
    const auto outcome = queue.run("hello", kLong);
    page.get();
    EXPECT_EQ(outcome.result, "hello!");
    EXPECT_FALSE(outcome.error);
}

TEST(DriveQueue, aScriptWithoutAPageTimesOutAndIsForgotten) {
    DriveQueue queue;
    EXPECT_TRUE(queue.run("lost", milliseconds(20)).timedOut);
    EXPECT_EQ(queue.next("one", milliseconds(0), kThere).kind, DriveQueue::PollKind::idle);
}

TEST(DriveQueue, aNewerPageReplacesTheOlder) {
    DriveQueue queue;
    EXPECT_EQ(queue.next("old", milliseconds(0), kThere).kind, DriveQueue::PollKind::idle);
    EXPECT_EQ(queue.next("new", milliseconds(0), kThere).kind, DriveQueue::PollKind::idle);
    EXPECT_EQ(queue.next("old", milliseconds(0), kThere).kind, DriveQueue::PollKind::replaced);
    EXPECT_EQ(queue.pages().loads, 2U);
    EXPECT_EQ(queue.pages().id, "new");
}

TEST(DriveQueue, aPageReplacedInMidScriptIsReportedAtOnce) {
    DriveQueue queue;
    auto pages = std::async(std::launch::async, [&] {
        EXPECT_EQ(queue.next("old", kLong, kThere).kind, DriveQueue::PollKind::script);
        (void)queue.next("new", milliseconds(0), kThere);
    });
    const auto outcome = queue.run("location.reload()", kLong);
    pages.get();
    EXPECT_EQ(outcome.error, "the page was replaced");
    EXPECT_FALSE(outcome.timedOut);
}

TEST(DriveQueue, aPageThatHasGoneIsNotCounted) {
    DriveQueue queue;
    EXPECT_EQ(queue.next("one", kLong, [] { return false; }).kind, DriveQueue::PollKind::idle);
    EXPECT_EQ(queue.pages().polling, 0U);
}

TEST(DriveQueue, aLateResultFindsNobody) {
    DriveQueue queue;
    EXPECT_FALSE(queue.finish(7, nullptr, std::nullopt));
}

TEST(DriveQueue, closingLetsEveryWaiterGo) {
    DriveQueue queue;
    auto page = std::async(std::launch::async, [&] { return queue.next("one", kLong, kThere).kind; });
    while (queue.pages().polling == 0)
        std::this_thread::yield();
    queue.close();
    EXPECT_EQ(page.get(), DriveQueue::PollKind::idle);
    EXPECT_TRUE(queue.run("late", kLong).timedOut);
}

} // namespace
} // namespace datacentre
