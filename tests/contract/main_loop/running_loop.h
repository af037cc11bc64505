#pragma once

#include "platform/main_loop.h"

#include <chrono>
#include <functional>
#include <memory>

namespace lumora::contract {

/// This thread's main loop on the system's own backend, run by a test as far as it needs. One implementation a backend.
class RunningLoop {
  public:
    using Condition = std::function<bool()>;

    virtual ~RunningLoop() = default;
    [[nodiscard]] virtual platform::MainLoop& loop() = 0;

    /// Runs the loop until the condition holds; whether it did before the deadline.
    [[nodiscard]] virtual bool runUntil(const Condition& condition, std::chrono::milliseconds deadline) = 0;

    /// The same, as while a modal window is open.
    [[nodiscard]] virtual bool runModallyUntil(const Condition& condition,
                                               std::chrono::milliseconds deadline) = 0;
};

[[nodiscard]] std::unique_ptr<RunningLoop> makeRunningLoop();

} // namespace lumora::contract
