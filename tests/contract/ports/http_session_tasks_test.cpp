#include "support/eventually.h"
#include "support/http_fixture.h"

#include <fmt/format.h>

#include <atomic>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>

namespace lumora::contract {
namespace {

using platform::HttpAnswer;

class HttpSessionTasks : public HttpFixture {};

TEST_F(HttpSessionTasks, completionsOfASessionRunOneAfterTheOtherOffTheCallersThread) {
    constexpr int kTasks = 30;
    const TestServer server([](Connection& client, const std::string& head) { client.answer(pathOf(head)); });
    const auto session = sessions_->makeSession({});
    std::atomic<int> running = 0;
    std::atomic<bool> overlapped = false;
    std::mutex mutex;
    std::set<std::thread::id> threads;
    std::multiset<std::string> bodies;
    std::atomic<int> done = 0;
    std::vector<std::thread> starters;
    for (int task = 0; task < kTasks; ++task) {
        starters.emplace_back([&, task] {
            session->startDataTask(get(server.url(fmt::format("/{}", task))), [&](HttpAnswer answer) {
                overlapped = overlapped || ++running != 1;
                {
                    const std::lock_guard lock(mutex);
                    threads.insert(std::this_thread::get_id());
                    bodies.insert(answer.body.value_or("error"));
                }
                std::this_thread::yield();
                --running;
                ++done;
            });
        });
    }
    for (std::thread& starter : starters)
        starter.join();

    ASSERT_TRUE(eventually([&] { return done == kTasks; }));
    EXPECT_FALSE(overlapped);
    EXPECT_EQ(0U, threads.count(std::this_thread::get_id()));
    if (kSessionsHaveAThread) {
        EXPECT_EQ(1U, threads.size());
    }
    for (int task = 0; task < kTasks; ++task)
        EXPECT_EQ(1U, bodies.count(fmt::format("/{}", task)));
}

TEST_F(HttpSessionTasks, aCompletionThatTakesLongHoldsUpNoOtherSession) {
    const TestServer server([](Connection& client, const std::string&) { client.answer("x"); });
    std::promise<void> release;
    std::promise<void> held;
    const auto slow = sessions_->makeSession({});
    slow->startDataTask(get(server.url()), [&](HttpAnswer) {
        held.set_value();
        release.get_future().wait();
    });
    held.get_future().wait();

    EXPECT_EQ("x", data(get(server.url())).body);
    EXPECT_EQ("x", sessions_->sendSynchronously(get(server.url())).body);
    std::promise<int> second;
    slow->startDataTask(get(server.url()), [&](HttpAnswer answer) { second.set_value(codeOf(answer)); });
    release.set_value();
    EXPECT_EQ(0, second.get_future().get());
}

TEST_F(HttpSessionTasks, aTaskOutlivesItsSessionAndAllSessions) {
    std::promise<void> proceed;
    const TestServer server([&](Connection& client, const std::string&) {
        proceed.get_future().wait();
        client.answer("late");
    });
    std::promise<std::string> body;
    const auto session = sessions_->makeSession({});
    session->startDataTask(get(server.url()),
                           [&](HttpAnswer answer) { body.set_value(answer.body.value_or("error")); });
    session->finishTasksAndInvalidate();
    sessions_.reset();
    proceed.set_value();

    EXPECT_EQ("late", body.get_future().get());
}

TEST_F(HttpSessionTasks, anInvalidatedSessionTakesNoFurtherTasks) {
    const TestServer server([](Connection& client, const std::string&) { client.answer(""); });
    const auto session = sessions_->makeSession({});
    session->finishTasksAndInvalidate();
    std::promise<int> code;
    session->startDataTask(get(server.url()), [&](HttpAnswer answer) { code.set_value(codeOf(answer)); });

    EXPECT_EQ(-999, code.get_future().get());
    EXPECT_EQ(0, server.requests());
}

TEST_F(HttpSessionTasks, anExceptionFromACompletionEndsNothing) {
    const TestServer server([](Connection& client, const std::string&) { client.answer("x"); });
    const auto session = sessions_->makeSession({});
    session->startDataTask(get(server.url()), [](HttpAnswer) { throw std::runtime_error("deliberate"); });
    std::promise<int> code;
    session->startDataTask(get(server.url()), [&](HttpAnswer answer) { code.set_value(codeOf(answer)); });

    EXPECT_EQ(0, code.get_future().get());
}

} // namespace
} // namespace lumora::contract
