#pragma once

#include "platform/web_view.h"

#import <WebKit/WebKit.h>
#include <memory>

namespace lumora::platform::macos_backend {

/// The port over a web view that has loaded nothing yet. Main thread.
[[nodiscard]] std::unique_ptr<WebView> portOver(WKWebView* view);

} // namespace lumora::platform::macos_backend
