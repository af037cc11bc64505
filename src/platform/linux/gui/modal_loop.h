#pragma once

#include "platform/linux/glib_handles.h"
#include "platform/linux/gui/event_tracking.h"
#include "platform/main_loop.h"

namespace lumora::platform::linux_backend {

/// A main loop inside the main loop: its caller waits, the window and the main thread's other work go on. Main thread.
class ModalLoop {
  public:
    explicit ModalLoop(EventTracking& tracking);
    ModalLoop(const ModalLoop&) = delete;
    ModalLoop& operator=(const ModalLoop&) = delete;

    /// Returns after `quit`, or when the application is to end.
    void run();
    void quit() { g_main_loop_quit(loop_.get()); }

  private:
    EventTracking& tracking_;
    std::unique_ptr<GMainLoop, Release<g_main_loop_unref>> loop_;
};

/// Does the work on a background thread while the caller waits in a modal loop. False when the application is to end
/// before the work has: nobody waits for it then.
[[nodiscard]] bool waitForBackgroundWork(MainLoop& mainLoop, EventTracking& tracking,
                                         std::function<void()> work);

} // namespace lumora::platform::linux_backend
