#pragma once

#include <functional>
#include <memory>

namespace lumora::platform::linux_backend {

/// Runs completions one after the other on one thread of its own, which ends when the queue is gone and what was added
/// has run.
class CompletionQueue {
  public:
    CompletionQueue();
    ~CompletionQueue();
    CompletionQueue(const CompletionQueue&) = delete;
    CompletionQueue& operator=(const CompletionQueue&) = delete;

    /// Starts the thread, once. Raises when the system has none to give.
    void start();

    /// Any thread, after `start`. The work raises nothing.
    void add(std::function<void()> work);

  private:
    struct State;
    const std::shared_ptr<State> state_;
};

} // namespace lumora::platform::linux_backend
