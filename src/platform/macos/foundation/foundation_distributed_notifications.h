#pragma once

#include "platform/distributed_notifications.h"

namespace lumora::platform::macos_backend {

/// `NSDistributedNotificationCenter`.
class FoundationDistributedNotifications final : public DistributedNotifications {
  public:
    void post(const std::string& name, const std::string& key, std::int64_t value) override;
};

} // namespace lumora::platform::macos_backend
