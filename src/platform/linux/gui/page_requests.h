#pragma once

#include <webkit/webkit.h>

namespace lumora::platform::linux_backend {

/// Answers what pages ask of the person at the screen: no dialog, prompt, file chooser, notification, print dialog or
/// password window is ever shown, no permission is granted, nothing is downloaded, and an authentication question goes
/// on without credentials.
void answerPageRequestsSilently(WebKitWebView* view);

/// The engine's settings for the join page.
void applySettings(WebKitSettings* settings);

} // namespace lumora::platform::linux_backend
