#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace lumora::platform {

/// When a timer may fire.
enum class TimerMode {
    defaultMode, ///< not while a menu is tracked or a modal window runs
    commonModes, ///< always
};

/// A repeating timer; destroying it invalidates it. Main thread.
class Timer {
  public:
    virtual ~Timer() = default;
};

/// A first-in, first-out queue of work on one background thread at a time.
class SerialQueue {
  public:
    virtual ~SerialQueue() = default;
    virtual void async(std::function<void()> work) = 0;
};

/// The main thread's run loop and the platform's background queues. What a piece of work raises, here, in a queue or in a
/// timer, ends that piece alone and is logged: above it stand only frames of others, through which nothing may pass.
class MainLoop {
  public:
    virtual ~MainLoop() = default;

    /// Queues work for the main thread. Any thread; runs in the order queued, never before returning.
    virtual void asyncOnMain(std::function<void()> work) = 0;

    /// Queues work for the global background queue. Any thread; pieces run concurrently.
    virtual void asyncInBackground(std::function<void()> work) = 0;

    /// Schedules a repeating timer on the main run loop. Main thread.
    [[nodiscard]] virtual std::unique_ptr<Timer>
    scheduleTimer(std::chrono::duration<double> interval, TimerMode mode, std::function<void()> action) = 0;

    /// Makes a serial queue. No thread is started before its first work.
    [[nodiscard]] virtual std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label) = 0;
};

} // namespace lumora::platform
