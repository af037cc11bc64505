#pragma once

#include "platform/web_view.h"

#include <functional>
#include <memory>
#include <string>

namespace lumora::contract {

/// A web view on the system's own backend, in a window on the screen. Main thread. One implementation a backend.
class ViewOnScreen {
  public:
    virtual ~ViewOnScreen() = default;
    [[nodiscard]] virtual platform::WebView& view() = 0;

    // What the view's user sees.
    [[nodiscard]] virtual std::string title() = 0; ///< the page's
    [[nodiscard]] virtual std::string address() = 0;
    [[nodiscard]] virtual bool isLoading() = 0;

    /// Ends the process that shows the page, as a crash does; false where the engine does not tell which it is.
    [[nodiscard]] virtual bool killPageProcess() = 0;
};

[[nodiscard]] std::unique_ptr<ViewOnScreen> makeViewOnScreen();

/// The application's window, as the backend's host opens it. Main thread. One implementation a backend.
class WindowOnScreen {
  public:
    virtual ~WindowOnScreen() = default;
    [[nodiscard]] virtual platform::WebViewHost& host() = 0;

    /// Opens the window; the host's view is made in between, before it stands in the window.
    virtual void open(const std::function<void()>& makeView) = 0;

    [[nodiscard]] virtual std::string title() = 0; ///< in its title bar
    virtual void close() = 0;                      ///< as its user does

    // Rows of the menu bar that act on the window and the page in it.
    virtual void zoomIn() = 0;
    virtual void showActualSize() = 0;
    virtual void reload() = 0;
};

[[nodiscard]] std::unique_ptr<WindowOnScreen> makeWindowOnScreen();

/// The code of a load whose server's certificate is refused: of the certificate, or of the refusal.
extern const int kRefusedCertificateCode;

} // namespace lumora::contract
