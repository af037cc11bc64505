#pragma once

#include "platform/linux/gui/glib_main_loop.h"
#include "platform/linux/gui/main_window.h"
#include "platform/web_view.h"

#include <webkit/webkit.h>

#include <functional>
#include <memory>

namespace lumora::platform::linux_backend {

/// Makes the web view, and later the window around it: the page's load is under way while the window is being built.
/// Main thread.
class WebKitHost final : public WebViewHost {
  public:
    /// @param deepLinkScheme  the scheme of links that are handed to the operating system
    WebKitHost(GlibMainLoop& loop, std::string deepLinkScheme)
        : loop_(loop), deepLinkScheme_(std::move(deepLinkScheme)) {}

    [[nodiscard]] std::unique_ptr<WebView> makeWebView() override;
    [[nodiscard]] Window* window() override;

    /// The open window, or null.
    [[nodiscard]] GtkWindow* gtkWindow() const;

    /// Builds and shows the window around the view. `lastWindowClosed` runs on the main thread after the window has
    /// vanished from the screen. The window stays while something is modal. The resource folder holds its icon.
    void openWindow(GtkApplication* application, const std::string& resourceFolder,
                    std::function<void()> lastWindowClosed);

  private:
    GlibMainLoop& loop_;
    const std::string deepLinkScheme_;
    ObjectRef<WebKitWebView> view_;
    std::unique_ptr<MainWindow> window_;
};

} // namespace lumora::platform::linux_backend
