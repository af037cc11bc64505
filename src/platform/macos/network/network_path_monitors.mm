#include "platform/macos/network/network_path_monitors.h"

#include "support/one_time_path_monitor.h"

#include <Network/Network.h>

namespace lumora::platform::macos_backend {

namespace {

class NetworkPathMonitor final : public OneTimePathMonitor {
  public:
    NetworkPathMonitor() = default;
    ~NetworkPathMonitor() override { cancel(); }
    NetworkPathMonitor(const NetworkPathMonitor&) = delete;
    NetworkPathMonitor& operator=(const NetworkPathMonitor&) = delete;

  private:
    void begin(std::function<void(PathStatus)> report) override {
        // Serial: on the global queue itself an update could overtake the one before.
        nw_path_monitor_set_queue(
            monitor_, dispatch_queue_create_with_target(nullptr, DISPATCH_QUEUE_SERIAL,
                                                        dispatch_get_global_queue(QOS_CLASS_BACKGROUND, 0)));
        nw_path_monitor_set_update_handler(monitor_, ^(nw_path_t path) {
            report(nw_path_get_status(path) == nw_path_status_satisfied ? PathStatus::satisfied
                                                                        : PathStatus::unsatisfied);
        });
        nw_path_monitor_start(monitor_);
    }

    void end() override { nw_path_monitor_cancel(monitor_); }

    nw_path_monitor_t monitor_ = nw_path_monitor_create();
};

} // namespace

std::unique_ptr<PathMonitor> NetworkPathMonitors::makePathMonitor() {
    return std::make_unique<NetworkPathMonitor>();
}

} // namespace lumora::platform::macos_backend
