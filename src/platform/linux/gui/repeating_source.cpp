#include "platform/linux/gui/repeating_source.h"

#include "support/exception_guard.h"

#include <algorithm>
#include <memory>
#include <new>

namespace lumora::platform::linux_backend {

namespace {

constexpr gint64 kMicrosecondsPerMillisecond = 1'000;

/// What the firing needs. Shared: the action may destroy its own timer.
struct Firing {
    gint64 interval; ///< microseconds
    gint64 next;     ///< on the monotonic clock, microseconds
    TimerMode mode;
    const EventTracking& tracking;
    std::function<void()> action;

    [[nodiscard]] bool due() const {
        if (g_get_monotonic_time() < next)
            return false;
        return mode == TimerMode::commonModes || !tracking.active();
    }
};

/// GLib allocates the source; the C++ part lives in its tail.
struct FiringSource {
    GSource base;
    std::shared_ptr<Firing> firing;
};

std::shared_ptr<Firing>& firingOf(GSource* source) { return reinterpret_cast<FiringSource*>(source)->firing; }

gboolean prepare(GSource* source, gint* timeout) {
    const Firing& firing = *firingOf(source);
    const gint64 wait = firing.next - g_get_monotonic_time();
    if (wait > 0) {
        *timeout = static_cast<gint>(std::min<gint64>(
            (wait + kMicrosecondsPerMillisecond - 1) / kMicrosecondsPerMillisecond, G_MAXINT));
        return FALSE;
    }
    *timeout = -1; // overdue while another mode runs: the event that ends that mode wakes the loop
    return firing.due() ? TRUE : FALSE;
}

gboolean check(GSource* source) { return firingOf(source)->due() ? TRUE : FALSE; }

gboolean dispatch(GSource* source, GSourceFunc, gpointer) {
    const std::shared_ptr<Firing> firing = firingOf(source);
    const gint64 late = g_get_monotonic_time() - firing->next;
    firing->next += (late / firing->interval + 1) * firing->interval;
    guarded(__func__, firing->action);
    return G_SOURCE_CONTINUE;
}

void finalize(GSource* source) { std::destroy_at(&firingOf(source)); }

GSourceFuncs functions = {prepare, check, dispatch, finalize, nullptr, nullptr};

} // namespace

RepeatingSource::RepeatingSource(std::chrono::duration<double> interval, TimerMode mode,
                                 const EventTracking& tracking, std::function<void()> action) {
    const auto microseconds = std::max<gint64>(
        std::chrono::duration_cast<std::chrono::microseconds>(interval).count(), kMicrosecondsPerMillisecond);
    source_.reset(g_source_new(&functions, sizeof(FiringSource)));
    new (&firingOf(source_.get())) std::shared_ptr<Firing>(std::make_shared<Firing>(
        Firing{microseconds, g_get_monotonic_time() + microseconds, mode, tracking, std::move(action)}));
    g_source_set_priority(source_.get(), G_PRIORITY_DEFAULT);
    g_source_attach(source_.get(), nullptr);
}

RepeatingSource::~RepeatingSource() { g_source_destroy(source_.get()); }

} // namespace lumora::platform::linux_backend
