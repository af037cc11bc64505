#include "platform/linux/gui/gio_path_monitors.h"

#include "platform/linux/glib_handles.h"
#include "support/one_time_path_monitor.h"

#include <utility>

namespace lumora::platform::linux_backend {

namespace {

using Report = std::function<void(PathStatus)>;

struct Update {
    Report report;
    PathStatus status;
};

void deliver(gpointer data, gpointer) {
    const std::unique_ptr<Update> update(static_cast<Update*>(data));
    update->report(update->status);
}

class GioPathMonitor final : public OneTimePathMonitor {
  public:
    GioPathMonitor() : queue_(g_thread_pool_new(deliver, nullptr, 1, FALSE, nullptr)) {}

    ~GioPathMonitor() override {
        cancel();
        g_thread_pool_free(queue_, FALSE, FALSE);
    }
    GioPathMonitor(const GioPathMonitor&) = delete;
    GioPathMonitor& operator=(const GioPathMonitor&) = delete;

  private:
    void begin(Report report) override {
        report_ = std::move(report);
        // The system's monitor is one for the process and reports to the thread that asks for it first.
        GNetworkMonitor* system = g_network_monitor_get_default();
        changes_ = std::make_unique<SignalConnections>(system);
        changes_->connect("network-changed", &GioPathMonitor::networkChanged, this);
        enqueue(g_network_monitor_get_network_available(system));
    }

    void end() override { changes_.reset(); }

    static void networkChanged(GNetworkMonitor*, gboolean available, gpointer self) {
        static_cast<GioPathMonitor*>(self)->enqueue(available);
    }

    void enqueue(gboolean available) {
        const PathStatus status = available == FALSE ? PathStatus::unsatisfied : PathStatus::satisfied;
        g_thread_pool_push(queue_, new Update{report_, status}, nullptr);
    }

    Report report_;
    GThreadPool* queue_;
    std::unique_ptr<SignalConnections> changes_;
};

} // namespace

std::unique_ptr<PathMonitor> GioPathMonitors::makePathMonitor() { return std::make_unique<GioPathMonitor>(); }

} // namespace lumora::platform::linux_backend
