#pragma once

#include <optional>
#include <string>
#include <utility>

namespace lumora {

/// Sees to it that a failed load has one reload: an engine may report that reload as failed too, when the offline page
/// takes its place, and another one then would go round for ever.
class ReloadOnce {
  public:
    /// A load that is none of the reloads begins.
    void renew() { attempted_ = false; }

    /// The customer goes to an address, in whichever frame. Of many such loads nothing is heard again: they are a frame's,
    /// or never begin. One that fails is a load of its own.
    void customerGoesTo(const std::optional<std::string>& address) { customers_ = address; }

    /// No reload until another load begins.
    void refuse() {
        attempted_ = true;
        customers_.reset();
    }

    /// Whether the failed load at this address has its reload now; counts as having had it.
    [[nodiscard]] bool allowsAfter(const std::optional<std::string>& failed) {
        if (customers_ && failed == std::exchange(customers_, std::nullopt))
            renew();
        return !std::exchange(attempted_, true);
    }

  private:
    bool attempted_ = false;
    std::optional<std::string> customers_; ///< where they went last
};

} // namespace lumora
