#pragma once

#include <webkit/webkit.h>

namespace lumora::platform::linux_backend {

/// The page's cookies stay as long as they say, as its other data does: the engine would forget them all with the
/// process. Other users cannot read them.
void keepCookies(WebKitWebView* view);

} // namespace lumora::platform::linux_backend
