#pragma once

#include <functional>

namespace lumora::platform::linux_backend {

/// Tells whether the main thread is inside a modal window or tracks a menu. Timers of the default mode wait until
/// that ends. Main thread.
class EventTracking {
  public:
    /// Counts as one modal window while it lives.
    class ModalSession {
      public:
        explicit ModalSession(EventTracking& tracking) : tracking_(tracking) { ++tracking_.modalDepth_; }
        ~ModalSession() { --tracking_.modalDepth_; }
        ModalSession(const ModalSession&) = delete;
        ModalSession& operator=(const ModalSession&) = delete;

      private:
        EventTracking& tracking_;
    };

    /// How to see whether a menu is open. Asked rather than told: a missed "closed" could never stop timers for good.
    void setMenuProbe(std::function<bool()> menuIsOpen) { menuIsOpen_ = std::move(menuIsOpen); }

    [[nodiscard]] bool active() const { return modalDepth_ > 0 || (menuIsOpen_ && menuIsOpen_()); }

  private:
    int modalDepth_ = 0;
    std::function<bool()> menuIsOpen_;
};

} // namespace lumora::platform::linux_backend
