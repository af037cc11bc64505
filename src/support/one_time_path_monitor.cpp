#include "support/one_time_path_monitor.h"

#include <mutex>
#include <utility>

namespace lumora {

using platform::PathStatus;

/// What the monitor and whoever reports to it share.
class OneTimePathMonitor::Reporter {
  public:
    void setHandler(std::function<void(PathStatus)> handler) {
        const std::lock_guard lock(mutex_);
        if (!ended_)
            handler_ = std::move(handler);
    }

    void end() {
        const std::lock_guard lock(mutex_);
        ended_ = true;
        handler_ = nullptr;
    }

    /// Calls the handler of this moment, without the lock: it may replace itself.
    void report(PathStatus status) {
        std::function<void(PathStatus)> handler;
        {
            const std::lock_guard lock(mutex_);
            handler = handler_;
        }
        if (handler)
            handler(status);
    }

  private:
    std::mutex mutex_;
    std::function<void(PathStatus)> handler_;
    bool ended_ = false;
};

OneTimePathMonitor::OneTimePathMonitor() : reporter_(std::make_shared<Reporter>()) {}

OneTimePathMonitor::~OneTimePathMonitor() = default;

void OneTimePathMonitor::setUpdateHandler(std::function<void(PathStatus)> handler) {
    reporter_->setHandler(std::move(handler));
}

void OneTimePathMonitor::start() {
    if (state_ != State::fresh)
        return;
    state_ = State::begun;
    begin([reporter = reporter_](PathStatus status) { reporter->report(status); });
}

void OneTimePathMonitor::cancel() {
    reporter_->end();
    if (std::exchange(state_, State::ended) == State::begun)
        end();
}

} // namespace lumora
