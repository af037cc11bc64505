#include "platform/linux/gui/gio_path_monitors.h"

#include "platform/linux/glib_handles.h"

#include <mutex>

namespace lumora::platform::linux_backend {

namespace {

using Handler = std::function<void(PathStatus)>;

/// What the main thread and the reporting thread share.
class Reporter {
  public:
    void setHandler(Handler handler) {
        const std::lock_guard lock(mutex_);
        handler_ = std::move(handler);
    }

    void cancel() {
        const std::lock_guard lock(mutex_);
        cancelled_ = true;
        handler_ = nullptr;
    }

    /// Calls the handler of this moment, without the lock: it may replace itself.
    void report(PathStatus status) {
        Handler handler;
        {
            const std::lock_guard lock(mutex_);
            if (!cancelled_)
                handler = handler_;
        }
        if (handler)
            handler(status);
    }

  private:
    std::mutex mutex_;
    Handler handler_;
    bool cancelled_ = false;
};

struct Update {
    std::shared_ptr<Reporter> reporter;
    PathStatus status;
};

void deliver(gpointer data, gpointer) {
    const std::unique_ptr<Update> update(static_cast<Update*>(data));
    update->reporter->report(update->status);
}

class GioPathMonitor final : public PathMonitor {
  public:
    GioPathMonitor() : queue_(g_thread_pool_new(deliver, nullptr, 1, FALSE, nullptr)) {}

    ~GioPathMonitor() override {
        cancel();
        g_thread_pool_free(queue_, FALSE, FALSE);
    }
    GioPathMonitor(const GioPathMonitor&) = delete;
    GioPathMonitor& operator=(const GioPathMonitor&) = delete;

    void setUpdateHandler(Handler handler) override { reporter_->setHandler(std::move(handler)); }

    void start() override {
        if (started_)
            return;
        started_ = true;
        // The system's monitor is one for the process and reports to the thread that asks for it first.
        GNetworkMonitor* system = g_network_monitor_get_default();
        changes_ = std::make_unique<SignalConnections>(system);
        changes_->connect("network-changed", &GioPathMonitor::networkChanged, this);
        enqueue(g_network_monitor_get_network_available(system));
    }

    void cancel() override {
        started_ = true; // a cancelled monitor stays cancelled
        changes_.reset();
        reporter_->cancel();
    }

  private:
    static void networkChanged(GNetworkMonitor*, gboolean available, gpointer self) {
        static_cast<GioPathMonitor*>(self)->enqueue(available);
    }

    void enqueue(gboolean available) {
        const PathStatus status = available == FALSE ? PathStatus::unsatisfied : PathStatus::satisfied;
        g_thread_pool_push(queue_, new Update{reporter_, status}, nullptr);
    }

    std::shared_ptr<Reporter> reporter_ = std::make_shared<Reporter>();
    GThreadPool* queue_;
    std::unique_ptr<SignalConnections> changes_;
    bool started_ = false;
};

} // namespace

std::unique_ptr<PathMonitor> GioPathMonitors::makePathMonitor() { return std::make_unique<GioPathMonitor>(); }

} // namespace lumora::platform::linux_backend
