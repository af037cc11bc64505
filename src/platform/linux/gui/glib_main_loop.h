#pragma once

#include "platform/linux/gui/event_tracking.h"
#include "platform/linux/glib_handles.h"
#include "platform/main_loop.h"

namespace lumora::platform::linux_backend {

/// The main loop on GLib's default main context, background work on GLib thread pools.
class GlibMainLoop final : public MainLoop {
  public:
    GlibMainLoop();

    void asyncOnMain(std::function<void()> work) override;
    void asyncInBackground(std::function<void()> work) override;
    [[nodiscard]] std::unique_ptr<Timer> scheduleTimer(std::chrono::duration<double> interval, TimerMode mode,
                                                       std::function<void()> action) override;
    [[nodiscard]] std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label) override;

    /// Raised by whoever runs a modal window, and told how to see an open menu.
    [[nodiscard]] EventTracking& tracking() { return tracking_; }

  private:
    EventTracking tracking_;
    GThreadPool* background_; ///< for the process's life: work may run until its very end
};

} // namespace lumora::platform::linux_backend
