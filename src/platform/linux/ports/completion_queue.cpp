#include "platform/linux/ports/completion_queue.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace lumora::platform::linux_backend {

struct CompletionQueue::State {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> work;
    bool started = false;
    bool closed = false;

    /// Empty when there is nothing left and nothing more can come.
    std::function<void()> next() {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return closed || !work.empty(); });
        if (work.empty())
            return {};
        std::function<void()> first = std::move(work.front());
        work.pop_front();
        return first;
    }
};

CompletionQueue::CompletionQueue() : state_(std::make_shared<State>()) {}

CompletionQueue::~CompletionQueue() {
    const std::lock_guard lock(state_->mutex);
    state_->closed = true;
    state_->changed.notify_one();
}

void CompletionQueue::start() {
    const std::lock_guard lock(state_->mutex);
    if (state_->started)
        return;
    std::thread([state = state_] {
        while (const std::function<void()> work = state->next())
            work();
    }).detach();
    state_->started = true;
}

void CompletionQueue::add(std::function<void()> work) {
    const std::lock_guard lock(state_->mutex);
    state_->work.push_back(std::move(work));
    state_->changed.notify_one();
}

} // namespace lumora::platform::linux_backend
