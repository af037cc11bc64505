#pragma once

#include <chrono>
#include <deque>

namespace lumora {

/// How often a page is helped up at once after its process has died, three times in ten seconds: one that only dies again
/// must not keep the machine busy.
class RevivalLimit {
  public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::size_t kMost = 3;
    static constexpr std::chrono::seconds kWindow{10};

    /// Whether it may come back now; counts when it may.
    [[nodiscard]] bool allowsAt(Clock::time_point now) {
        while (!recent_.empty() && now - recent_.front() >= kWindow)
            recent_.pop_front();
        if (recent_.size() == kMost)
            return false;
        recent_.push_back(now);
        return true;
    }

  private:
    std::deque<Clock::time_point> recent_;
};

} // namespace lumora
