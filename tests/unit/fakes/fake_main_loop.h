#pragma once

#include "platform/main_loop.h"

#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace lumora::fakes {

/// Work waits until the test runs it; timers fire when the test says so.
class FakeMainLoop final : public platform::MainLoop {
  public:
    FakeMainLoop() = default;
    FakeMainLoop(const FakeMainLoop&) = delete;
    FakeMainLoop& operator=(const FakeMainLoop&) = delete;
    /// Drops the actions, and with them what a timer's owner keeps alive through its own timer.
    ~FakeMainLoop() override {
        for (const auto& timer : timers)
            auto dropped = std::exchange(timer->action, nullptr);
    }

    struct TimerState {
        std::chrono::duration<double> interval;
        platform::TimerMode mode;
        std::function<void()> action;
        bool valid = true;
    };

    std::deque<std::function<void()>> mainWork, backgroundWork;
    std::vector<std::shared_ptr<TimerState>> timers; ///< every timer ever scheduled, in order
    std::vector<std::string> serialQueueLabels;
    int serialQueueWork = 0;
    bool throwOnScheduleTimer = false;

    void asyncOnMain(std::function<void()> work) override { mainWork.push_back(std::move(work)); }
    void asyncInBackground(std::function<void()> work) override { backgroundWork.push_back(std::move(work)); }

    std::unique_ptr<platform::Timer> scheduleTimer(std::chrono::duration<double> interval,
                                                   platform::TimerMode mode,
                                                   std::function<void()> action) override {
        if (throwOnScheduleTimer)
            throw std::runtime_error("no timer");
        auto state = std::make_shared<TimerState>(TimerState{interval, mode, std::move(action)});
        timers.push_back(state);
        return std::make_unique<FakeTimer>(state);
    }

    std::unique_ptr<platform::SerialQueue> makeSerialQueue(const std::string& label) override {
        serialQueueLabels.push_back(label);
        return std::make_unique<FakeQueue>(*this);
    }

    /// Runs what waits for the main thread, including what that queues in turn.
    void runMain() { drain(mainWork); }
    void runBackground() { drain(backgroundWork); }

    [[nodiscard]] std::size_t validTimers() const {
        std::size_t count = 0;
        for (const auto& timer : timers)
            count += timer->valid ? 1U : 0U;
        return count;
    }

    /// Fires every valid timer once.
    void fireTimers() {
        const auto snapshot = timers;
        for (const auto& timer : snapshot)
            if (timer->valid)
                timer->action();
    }

  private:
    class FakeTimer final : public platform::Timer {
      public:
        explicit FakeTimer(std::shared_ptr<TimerState> state) : state_(std::move(state)) {}
        ~FakeTimer() override { state_->valid = false; }
        FakeTimer(const FakeTimer&) = delete;
        FakeTimer& operator=(const FakeTimer&) = delete;

      private:
        std::shared_ptr<TimerState> state_;
    };

    class FakeQueue final : public platform::SerialQueue {
      public:
        explicit FakeQueue(FakeMainLoop& owner) : owner_(owner) {}
        void async(std::function<void()>) override { ++owner_.serialQueueWork; }

      private:
        FakeMainLoop& owner_;
    };

    static void drain(std::deque<std::function<void()>>& work) {
        while (!work.empty()) {
            auto next = std::move(work.front());
            work.pop_front();
            next();
        }
    }
};

} // namespace lumora::fakes
