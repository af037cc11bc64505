#include "platform/linux/gui/glib_main_loop.h"

#include "platform/linux/gui/repeating_source.h"
#include "support/exception_guard.h"

namespace lumora::platform::linux_backend {

namespace {

using Work = std::function<void()>;

/// Blocking chains (downloads' follow-up work, tools) may occupy many threads at once.
constexpr gint kBackgroundThreads = 64;

void runAndForget(gpointer data, gpointer) {
    const std::unique_ptr<Work> work(static_cast<Work*>(data));
    guarded(__func__, *work);
}

gboolean runOnce(gpointer data) {
    guarded(__func__, *static_cast<Work*>(data));
    return G_SOURCE_REMOVE;
}

void forget(gpointer data) { delete static_cast<Work*>(data); }

/// One thread at most, and none before its first work. Work that still waits when the queue goes is run.
class PoolQueue final : public SerialQueue {
  public:
    PoolQueue() : pool_(g_thread_pool_new(runAndForget, nullptr, 1, FALSE, nullptr)) {}
    ~PoolQueue() override { g_thread_pool_free(pool_, FALSE, FALSE); }
    PoolQueue(const PoolQueue&) = delete;
    PoolQueue& operator=(const PoolQueue&) = delete;

    void async(Work work) override { g_thread_pool_push(pool_, new Work(std::move(work)), nullptr); }

  private:
    GThreadPool* pool_;
};

} // namespace

GlibMainLoop::GlibMainLoop()
    : background_(g_thread_pool_new(runAndForget, nullptr, kBackgroundThreads, FALSE, nullptr)) {}

void GlibMainLoop::asyncOnMain(std::function<void()> work) {
    // A source of its own for each piece: g_main_context_invoke would run it at once on the main thread, and one
    // shared source would hold back what waits while a piece runs a modal window.
    const SourcePointer source(g_idle_source_new());
    g_source_set_priority(source.get(), G_PRIORITY_DEFAULT);
    g_source_set_callback(source.get(), runOnce, new Work(std::move(work)), forget);
    g_source_attach(source.get(), nullptr);
}

void GlibMainLoop::asyncInBackground(std::function<void()> work) {
    g_thread_pool_push(background_, new Work(std::move(work)), nullptr);
}

std::unique_ptr<Timer> GlibMainLoop::scheduleTimer(std::chrono::duration<double> interval, TimerMode mode,
                                                   std::function<void()> action) {
    return std::make_unique<RepeatingSource>(interval, mode, tracking_, std::move(action));
}

// A pool's threads are shared with others and carry no name, so the label has no use here.
std::unique_ptr<SerialQueue> GlibMainLoop::makeSerialQueue(const std::string&) {
    return std::make_unique<PoolQueue>();
}

} // namespace lumora::platform::linux_backend
