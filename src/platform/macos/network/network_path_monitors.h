#pragma once

#include "platform/path_monitor.h"

namespace lumora::platform::macos_backend {

/// Network paths as the Network framework sees them; updates arrive on the background queue, in their order.
class NetworkPathMonitors final : public PathMonitors {
  public:
    [[nodiscard]] std::unique_ptr<PathMonitor> makePathMonitor() override;
};

} // namespace lumora::platform::macos_backend
