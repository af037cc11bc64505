#pragma once

#include "desktop.h"
#include "running_loop.h"

#include <gtest/gtest.h>

#include <chrono>
#include <utility>

namespace lumora::contract {

using platform::Alert;
using platform::AlertStyle;
using platform::kAlertFirstButtonReturn;
using Texts = std::vector<std::string>;

/// Alerts that a test answers.
template <class OnScreen>
class AlertsFixture : public ::testing::Test {
  protected:
    explicit AlertsFixture(std::unique_ptr<OnScreen> made) : screen(std::move(made)) {}

    /// Shows the alert and does the step as soon as it stands on the screen; the answer.
    int answerOf(const Alert& alert, std::function<void()> step) {
        const auto poll = running_->loop().scheduleTimer(std::chrono::milliseconds(10),
                                                         platform::TimerMode::commonModes, [&] {
                                                             if (step && screen->isOneThere())
                                                                 std::exchange(step, nullptr)();
                                                         });
        return screen->alerts().runModal(alert);
    }

    const std::unique_ptr<OnScreen> screen;

  private:
    const std::unique_ptr<RunningLoop> running_ = makeRunningLoop();
};

} // namespace lumora::contract
