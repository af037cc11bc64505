#pragma once

#include "platform/linux/gui/event_tracking.h"
#include "platform/linux/glib_handles.h"
#include "platform/main_loop.h"

namespace lumora::platform::linux_backend {

/// A repeating timer as a source of the default main context. A firing that falls due while its mode does not run
/// happens once, as soon as it runs again; missed firings are not made up, and the rhythm stays that of the start.
class RepeatingSource final : public Timer {
  public:
    RepeatingSource(std::chrono::duration<double> interval, TimerMode mode, const EventTracking& tracking,
                    std::function<void()> action);
    ~RepeatingSource() override;
    RepeatingSource(const RepeatingSource&) = delete;
    RepeatingSource& operator=(const RepeatingSource&) = delete;

  private:
    SourcePointer source_;
};

} // namespace lumora::platform::linux_backend
