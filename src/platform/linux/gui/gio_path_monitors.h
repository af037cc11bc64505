#pragma once

#include "platform/path_monitor.h"

namespace lumora::platform::linux_backend {

/// Network paths as GNetworkMonitor sees them. Monitors are made, started and cancelled on the main thread; their
/// handlers run on a background thread, one update at a time.
class GioPathMonitors final : public PathMonitors {
  public:
    [[nodiscard]] std::unique_ptr<PathMonitor> makePathMonitor() override;
};

} // namespace lumora::platform::linux_backend
