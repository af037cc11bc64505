#include "platform/linux/gui/webkit_host.h"

#include "platform/linux/gui/main_menu.h"
#include "platform/linux/gui/webkit_view.h"

namespace lumora::platform::linux_backend {

std::unique_ptr<WebView> WebKitHost::makeWebView() {
    auto view = std::make_unique<WebKitView>(loop_, deepLinkScheme_);
    view_ = ObjectRef<WebKitWebView>::retain(view->widget());
    return view;
}

Window* WebKitHost::window() { return window_ != nullptr && window_->isOpen() ? window_.get() : nullptr; }

GtkWindow* WebKitHost::gtkWindow() const {
    return window_ != nullptr && window_->isOpen() ? GTK_WINDOW(window_->widget()) : nullptr;
}

void WebKitHost::openWindow(GtkApplication* application, const std::string& resourceFolder,
                            std::function<void()> lastWindowClosed) {
    setDefaultIcon(resourceFolder);
    // A modal session's end comes first: closing would put a staged update in place beside the script that is just
    // removing the application.
    const auto mayClose = [this] { return !loop_.tracking().inModalSession(); };
    // Asked afterwards: what follows the last window's closing may take long, and the window must be gone by then.
    window_ = std::make_unique<MainWindow>(application, view_.get(), mayClose,
                                           [this, lastWindowClosed] { loop_.asyncOnMain(lastWindowClosed); });
    loop_.tracking().setMenuProbe([this] { return window_->isOpen() && menuIsOpen(window_->widget()); });
    window_->present();
}

} // namespace lumora::platform::linux_backend
