#include "api/network_monitor.h"

#include "platform/ports.h"
#include "support/shared_instance.h"
#include "support/url.h"

namespace lumora {

namespace {

using namespace std::chrono_literals;

constexpr auto kProbeInterval = 2.0s;
constexpr auto kProbeTimeout = 10s;
constexpr const char* kUserAgent =
    "Mozilla/5.0 (Macintosh; Intel Mac OS X 10_15_7) AppleWebKit/537.36 (KHTML, "
    "like Gecko) Chrome/91.0.4472.124 Safari/537.36";

SharedInstance<NetworkMonitor>& sharedInstance() {
    static auto* shared = new SharedInstance<NetworkMonitor>; // probes may still be answered at exit
    return *shared;
}

platform::HttpRequest probeRequest(std::string url) {
    platform::HttpRequest request;
    request.url = std::move(url);
    request.headers = {{"User-Agent", kUserAgent}};
    request.timeout = kProbeTimeout;
    request.cachePolicy = platform::HttpCachePolicy::returnCacheDataElseLoad;
    return request;
}

bool reached(const platform::HttpAnswer& answer) {
    return answer.response && !answer.error && answer.response->statusCode == platform::kHttpOk;
}

} // namespace

NetworkMonitor& NetworkMonitor::shared() {
    return sharedInstance().get([] { return std::make_unique<NetworkMonitor>(); });
}

void NetworkMonitor::resetForTesting() { sharedInstance().resetForTesting(); }

NetworkMonitor::NetworkMonitor() {
    configuration_.kind = platform::HttpSessionKind::standard;
    configuration_.resourceTimeout = kProbeTimeout;
    configuration_.waitsForConnectivity = true;
    configuration_.redirects =
        platform::HttpRedirects::stop; // only the address itself counts, with exactly 200
}

NetworkMonitor::~NetworkMonitor() = default;

void NetworkMonitor::startMonitoringReachability(const std::string& url) {
    urlString_ = url;
    isWebsiteReachable_ = false; // what the old address answered says nothing about this one
    ++probeGeneration_;
    if (!monitor_)
        monitor_ = platform::ports().pathMonitors->makePathMonitor();
    monitor_->setUpdateHandler(
        [this, alive = std::weak_ptr(alive_), generation = pathGeneration_](platform::PathStatus status) {
            platform::ports().mainLoop->asyncOnMain([this, alive, generation, status] {
                if (alive.expired() || generation != pathGeneration_)
                    return;
                isInternetAvailable_ = status == platform::PathStatus::satisfied;
                startWebsiteReachabilityChecking();
            });
        });
    monitor_->start();
}

void NetworkMonitor::startWebsiteReachabilityChecking() {
    reachabilityTimer_.reset();
    reachabilityTimer_ = platform::ports().mainLoop->scheduleTimer(
        kProbeInterval, platform::TimerMode::defaultMode, [this] { checkWebsiteReachability(); });
}

void NetworkMonitor::checkWebsiteReachability() {
    auto url = parseUrl(urlString_);
    if (!url)
        return;
    const auto session = platform::ports().httpSessions->makeSession(configuration_);
    session->startDataTask(probeRequest(std::move(*url)), [this, alive = std::weak_ptr(alive_),
                                                           generation = probeGeneration_](
                                                              const platform::HttpAnswer& answer) {
        if (alive.expired())
            return;
        platform::ports().mainLoop->asyncOnMain([this, alive, generation, websiteReached = reached(answer)] {
            if (!alive.expired() && generation == probeGeneration_)
                applyProbe(websiteReached);
        });
    });
    session->finishTasksAndInvalidate();
}

void NetworkMonitor::stopMonitoring() {
    if (monitor_)
        monitor_->cancel();
    monitor_.reset();
    reachabilityTimer_.reset();
    ++pathGeneration_;
    ++probeGeneration_;
}

void NetworkMonitor::applyProbe(bool websiteReached) {
    const bool wasReachable = isWebsiteReachable_;
    isWebsiteReachable_ = websiteReached;
    if (networkMonitorDelegate_ == nullptr)
        return;
    // Restoring is news once; a failure is told after every probe, so that the offline page also replaces a page
    // that was loaded meanwhile.
    if (!websiteReached)
        networkMonitorDelegate_->didFailedToConnect();
    else if (!wasReachable)
        networkMonitorDelegate_->didRestoreConnection();
}

} // namespace lumora
