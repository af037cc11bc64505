#pragma once

#include "platform/web_view.h"

#include <functional>
#include <memory>

namespace lumora::platform::macos_backend {

/// Makes the window, and in it the web view. Main thread.
class WebKitHost final : public WebViewHost {
  public:
    WebKitHost();
    ~WebKitHost() override;
    WebKitHost(const WebKitHost&) = delete;
    WebKitHost& operator=(const WebKitHost&) = delete;

    [[nodiscard]] std::unique_ptr<WebView> makeWebView() override;
    [[nodiscard]] Window* window() override;

    /// Builds and shows the window. `viewDidLoad` runs when its content stands and before that is in the window; the
    /// web view is made there.
    void openWindow(std::function<void()> viewDidLoad);

  private:
    struct Content;
    std::unique_ptr<Content> content_;
};

} // namespace lumora::platform::macos_backend
