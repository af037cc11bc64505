#include "platform/macos/network/network_path_monitors.h"

#import <Network/Network.h>

namespace lumora::platform::macos_backend {

namespace {

class NetworkPathMonitor final : public PathMonitor {
  public:
    NetworkPathMonitor() {
        nw_path_monitor_set_queue(monitor_, dispatch_get_global_queue(QOS_CLASS_BACKGROUND, 0));
    }
    ~NetworkPathMonitor() override { cancel(); }
    NetworkPathMonitor(const NetworkPathMonitor&) = delete;
    NetworkPathMonitor& operator=(const NetworkPathMonitor&) = delete;

    void setUpdateHandler(std::function<void(PathStatus)> handler) override {
        nw_path_monitor_set_update_handler(monitor_, ^(nw_path_t path) {
            handler(nw_path_get_status(path) == nw_path_status_satisfied ? PathStatus::satisfied
                                                                         : PathStatus::unsatisfied);
        });
    }
    void start() override { nw_path_monitor_start(monitor_); }
    void cancel() override { nw_path_monitor_cancel(monitor_); }

  private:
    nw_path_monitor_t monitor_ = nw_path_monitor_create();
};

} // namespace

std::unique_ptr<PathMonitor> NetworkPathMonitors::makePathMonitor() {
    return std::make_unique<NetworkPathMonitor>();
}

} // namespace lumora::platform::macos_backend
