#pragma once

#include <webkit/webkit.h>

namespace lumora::platform::linux_backend {

/// Tab goes round in the page, and leaves it by the menu bar's own keys alone.
void keepFocusOffHiddenParts(WebKitWebView* view);

} // namespace lumora::platform::linux_backend
