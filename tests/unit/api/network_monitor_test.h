#pragma once

#include "api/network_monitor.h"
#include "fakes/core_test.h"

#include <functional>
#include <string>
#include <vector>

namespace lumora {

/// Keeps what the monitor tells, in its order.
class KeptCallbacks final : public NetworkMonitorDelegate {
  public:
    std::vector<std::string> calls;
    std::function<void()> onFailure = [] {};
    void didRestoreConnection() override { calls.emplace_back("restored"); }
    void didFailedToConnect() override {
        calls.emplace_back("failed");
        onFailure();
    }
};

/// The one monitor, with a delegate that keeps what it is told.
class NetworkMonitoring : public CoreTest {
  protected:
    static constexpr const char* kPage = "https://com.ovratessel.example/join";
    static constexpr const char* kOtherPage = "https://eu.ovratessel.example/join";

    NetworkMonitoring() { monitor.setNetworkMonitorDelegate(&delegate); }

    void startWithPath(const std::string& url = kPage) {
        monitor.startMonitoringReachability(url);
        paths.update(platform::PathStatus::satisfied);
        loop.runMain();
    }

    /// Lets the probe timer fire once and the probe end with a status.
    void probe(long status) {
        loop.fireTimers();
        http.finishData(http.tasks.size() - 1, status, "");
        loop.runMain();
    }

    void failProbe() {
        loop.fireTimers();
        http.failData(http.tasks.size() - 1, {"NSURLErrorDomain", -1009, "Offline.", {}});
        loop.runMain();
    }

    KeptCallbacks delegate;
    NetworkMonitor& monitor = NetworkMonitor::shared();
};

} // namespace lumora
