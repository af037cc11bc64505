#pragma once

#include "platform/main_loop.h"

namespace lumora::platform::macos_backend {

/// The main run loop and the system's dispatch queues.
class AppKitMainLoop final : public MainLoop {
  public:
    void asyncOnMain(std::function<void()> work) override;
    void asyncInBackground(std::function<void()> work) override;
    [[nodiscard]] std::unique_ptr<Timer> scheduleTimer(std::chrono::duration<double> interval, TimerMode mode,
                                                       std::function<void()> action) override;
    [[nodiscard]] std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label) override;
};

} // namespace lumora::platform::macos_backend
