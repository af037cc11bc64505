#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace lumora::platform::linux_backend {

/// Tells whether the main thread is inside a modal window or tracks a menu. Timers of the default mode wait until
/// that ends. Main thread.
class EventTracking {
  public:
    /// Counts as one modal window while it lives.
    class ModalSession {
      public:
        /// @param end  how to end what is modal before its time, because the application ends
        explicit ModalSession(
            EventTracking& tracking, std::function<void()> end = [] {})
            : tracking_(tracking), end_(std::move(end)) {
            tracking_.sessions_.push_back(this);
        }
        ~ModalSession() { std::erase(tracking_.sessions_, this); }
        ModalSession(const ModalSession&) = delete;
        ModalSession& operator=(const ModalSession&) = delete;

      private:
        friend EventTracking;
        EventTracking& tracking_;
        const std::function<void()> end_;
    };

    /// How to see whether a menu is open. Asked rather than told: a missed "closed" could never stop timers for good.
    void setMenuProbe(std::function<bool()> menuIsOpen) { menuIsOpen_ = std::move(menuIsOpen); }

    [[nodiscard]] bool active() const { return inModalSession() || (menuIsOpen_ && menuIsOpen_()); }
    [[nodiscard]] bool inModalSession() const { return !sessions_.empty(); }

    /// Ends every modal session, and from now on each new one before it begins: the application is to end.
    void endModalSessions() {
        ended_ = true;
        for (const ModalSession* session : sessions_)
            session->end_();
    }
    [[nodiscard]] bool ended() const { return ended_; }

  private:
    std::vector<ModalSession*> sessions_;
    std::function<bool()> menuIsOpen_;
    bool ended_ = false;
};

} // namespace lumora::platform::linux_backend
