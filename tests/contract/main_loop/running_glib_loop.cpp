#include "platform/linux/gui/glib_main_loop.h"
#include "running_loop.h"

#include <glib.h>

namespace lumora::contract {

namespace {

constexpr guint kLookAgainMilliseconds = 5; // what changes a condition may be another thread

class RunningGlibLoop final : public RunningLoop {
  public:
    platform::MainLoop& loop() override { return loop_; }

    bool runUntil(const Condition& condition, std::chrono::milliseconds deadline) override {
        const guint pulse = g_timeout_add(
            kLookAgainMilliseconds, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
        const auto end = std::chrono::steady_clock::now() + deadline;
        while (!condition() && std::chrono::steady_clock::now() < end)
            g_main_context_iteration(nullptr, TRUE);
        g_source_remove(pulse);
        return condition();
    }

    bool runModallyUntil(const Condition& condition, std::chrono::milliseconds deadline) override {
        const platform::linux_backend::EventTracking::ModalSession modal(loop_.tracking());
        return runUntil(condition, deadline);
    }

  private:
    platform::linux_backend::GlibMainLoop loop_;
};

} // namespace

std::unique_ptr<RunningLoop> makeRunningLoop() { return std::make_unique<RunningGlibLoop>(); }

} // namespace lumora::contract
