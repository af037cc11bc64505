#pragma once

#include "platform/linux/glib_handles.h"
#include "platform/main_loop.h"

#include <webkit/webkit.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace lumora::platform::linux_backend {

/// The time-out of the host's load, which the engine does not have: counts from the last that came of the page, and ends
/// with the page's own last byte. Its pictures and the like may take longer. Main thread.
///
/// The engine tells only of progress as a whole: while the page itself stands still, what comes of its pictures puts the
/// time-out off too.
class LoadWatch {
  public:
    using TimedOut = std::function<void(const std::string& uri)>;

    LoadWatch(MainLoop& loop, WebKitWebView* view, TimedOut timedOut);
    LoadWatch(const LoadWatch&) = delete;
    LoadWatch& operator=(const LoadWatch&) = delete;

    /// A load of this address begins, in place of any other.
    void begin(const std::string& uri, std::chrono::seconds timeout);

    /// Something of the load has come.
    void progressed();

    /// The server has sent the load on to this address. Another process may go on with it there.
    void redirected(const std::string& uri);

    void end();

  private:
    void startTimer();
    static void progressChanged(WebKitWebView* view, GParamSpec* property, gpointer self);
    static void resourceStarted(WebKitWebView* view, WebKitWebResource* resource, WebKitURIRequest* request,
                                gpointer self);
    static void pageFailed(WebKitWebResource* resource, GError* error, gpointer self);
    static void pageComplete(WebKitWebResource* resource, gpointer self);

    MainLoop& loop_;
    TimedOut timedOut_;
    std::string uri_;
    std::string target_; ///< where the last redirect led; empty without one
    std::chrono::seconds timeout_{};
    std::unique_ptr<Timer> timer_;      ///< absent: nothing is watched
    ObjectRef<WebKitWebResource> page_; ///< outlives the handlers below
    std::optional<SignalConnections> pageSignals_;
    SignalConnections viewSignals_;
};

} // namespace lumora::platform::linux_backend
