#pragma once

#include "config/log_handler.h"

#include <memory>

namespace lumora {

/// Sees the application's life from the first object made to the last call before exit: orders the start-up work and
/// owns the one termination path. Main thread.
class AppDelegate {
  public:
    AppDelegate();
    ~AppDelegate();
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// The delegate stands, nothing is launched yet: folders, log, preferences.
    void awakeFromNib();
    void applicationWillFinishLaunching();

    /// Hands the launch's network work to the background queue and returns at once.
    void applicationDidFinishLaunching();

    /// Posts the termination notification. Always true. The Quit command does not come this way: it ends the process
    /// without applying a staged update.
    bool applicationShouldTerminateAfterLastWindowClosed();

    /// Handler of "OvraLumoraTerminate": applies a staged update, then ends the application. Runs on the poster's
    /// thread, at most once.
    void terminateApp();

    /// Saves and releases nothing.
    void applicationWillTerminate();

  private:
    std::shared_ptr<LogHandler> logHandler_;
};

} // namespace lumora
