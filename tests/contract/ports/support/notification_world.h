#pragma once

#include "platform/property_list.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace lumora::contract {

/// Where this process and those that it starts post and hear: a bus of the test's own, or the user's one place on systems
/// that have but one. One implementation a backend.
class NotificationWorld {
  public:
    NotificationWorld();
    ~NotificationWorld();
    NotificationWorld(const NotificationWorld&) = delete;
    NotificationWorld& operator=(const NotificationWorld&) = delete;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

/// Waits for a notification of the name that is posted with no sender.
/// @param listening  called as soon as none can be missed
/// @return its payload; absent when none comes
[[nodiscard]] std::optional<platform::PropertyListDictionary>
awaitNotification(const std::string& name, const std::function<void()>& listening);

} // namespace lumora::contract
