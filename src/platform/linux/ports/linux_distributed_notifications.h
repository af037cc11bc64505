#pragma once

#include "platform/distributed_notifications.h"

namespace lumora::platform::linux_backend {

/// A D-Bus signal on the session bus: object /com/ovra/tessel/Lumora, member
/// com.ovra.tessel.Lumora.Notification.Posted, signature (sa{sv}): the name and its one entry. Without a running
/// session bus nothing happens (none is started), and a bus that does not answer holds the caller for two seconds.
class LinuxDistributedNotifications final : public DistributedNotifications {
  public:
    void post(const std::string& name, const std::string& key, std::int64_t value) override;
};

} // namespace lumora::platform::linux_backend
