#pragma once

#include "platform/http_session.h"
#include "platform/main_loop.h"
#include "platform/path_monitor.h"

#include <cstdint>
#include <memory>
#include <string>

namespace lumora {

/// Told when the web server becomes reachable or stays out of reach. Main thread.
class NetworkMonitorDelegate {
  public:
    virtual ~NetworkMonitorDelegate() = default;
    virtual void didRestoreConnection() = 0; ///< only when an unreachable server answers 200
    virtual void didFailedToConnect() = 0;   ///< after every failed probe
};

/// Decides whether the web server can be reached: a network-path monitor plus a probe every two seconds. The probe's
/// result drives the delegate, the path only restarts its rhythm. Main thread.
class NetworkMonitor {
  public:
    [[nodiscard]] static NetworkMonitor& shared();
    static void resetForTesting();

    NetworkMonitor();
    ~NetworkMonitor();

    /// Watches an address from now on: reachability begins unknown (unreachable) again. While the path monitor runs,
    /// only address and handler are replaced.
    void startMonitoringReachability(const std::string& url);

    /// (Re)starts the probe's two-second rhythm.
    void startWebsiteReachabilityChecking();

    /// Sends one probe; an address that does not parse is never probed.
    void checkWebsiteReachability();

    /// Ends the watch: path hops and probe results under way are dropped.
    void stopMonitoring();

    [[nodiscard]] bool isInternetAvailable() const { return isInternetAvailable_; }
    [[nodiscard]] bool isWebsiteReachable() const { return isWebsiteReachable_; }
    [[nodiscard]] NetworkMonitorDelegate* networkMonitorDelegate() const { return networkMonitorDelegate_; }
    void setNetworkMonitorDelegate(NetworkMonitorDelegate* delegate) { networkMonitorDelegate_ = delegate; }

  private:
    void applyProbe(bool websiteReached);

    std::unique_ptr<platform::PathMonitor> monitor_; ///< absent before the first start and after a stop
    platform::HttpSessionConfiguration configuration_;
    std::string urlString_;
    bool isInternetAvailable_ = false;
    NetworkMonitorDelegate* networkMonitorDelegate_ = nullptr;
    bool isWebsiteReachable_ = false;
    std::unique_ptr<platform::Timer> reachabilityTimer_;

    /// Grows with every start and stop: a probe of an older address says nothing about the present one.
    std::uint64_t probeGeneration_ = 0;
    /// Grows with every stop only: a path update that was under way when the address was replaced is the only one
    /// that the running path monitor sends, and the probe's rhythm begins with it.
    std::uint64_t pathGeneration_ = 0;
    /// For callbacks that may outlive this monitor.
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

} // namespace lumora
