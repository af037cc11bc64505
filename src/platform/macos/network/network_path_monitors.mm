#include "platform/macos/network/network_path_monitors.h"

#import <Network/Network.h>
#include <utility>

using lumora::platform::PathStatus;

/// The handler of the moment: the monitor's own is set once, before it starts.
@interface LumoraPathHandler : NSObject
@property(atomic, copy) void (^current)(PathStatus);
@end

@implementation LumoraPathHandler
@end

namespace lumora::platform::macos_backend {

namespace {

class NetworkPathMonitor final : public PathMonitor {
  public:
    NetworkPathMonitor() {
        LumoraPathHandler* handler = handler_;
        nw_path_monitor_set_queue(monitor_, dispatch_get_global_queue(QOS_CLASS_BACKGROUND, 0));
        nw_path_monitor_set_update_handler(monitor_, ^(nw_path_t path) {
            void (^current)(PathStatus) = handler.current;
            if (current != nil)
                current(nw_path_get_status(path) == nw_path_status_satisfied ? PathStatus::satisfied
                                                                             : PathStatus::unsatisfied);
        });
    }
    ~NetworkPathMonitor() override { cancel(); }
    NetworkPathMonitor(const NetworkPathMonitor&) = delete;
    NetworkPathMonitor& operator=(const NetworkPathMonitor&) = delete;

    void setUpdateHandler(std::function<void(PathStatus)> handler) override {
        handler_.current = ^(PathStatus status) {
            handler(status);
        };
    }
    void start() override {
        if (!std::exchange(started_, true))
            nw_path_monitor_start(monitor_);
    }
    void cancel() override {
        started_ = true; // a cancelled monitor stays cancelled
        handler_.current = nil;
        if (!std::exchange(cancelled_, true))
            nw_path_monitor_cancel(monitor_);
    }

  private:
    nw_path_monitor_t monitor_ = nw_path_monitor_create();
    LumoraPathHandler* handler_ = [[LumoraPathHandler alloc] init];
    bool started_ = false;
    bool cancelled_ = false;
};

} // namespace

std::unique_ptr<PathMonitor> NetworkPathMonitors::makePathMonitor() {
    return std::make_unique<NetworkPathMonitor>();
}

} // namespace lumora::platform::macos_backend
