#pragma once

#include <webkit/webkit.h>

namespace lumora::platform::linux_backend {

/// Asks servers for, and lets pages see, the languages that the user wants of the desktop, first to last. The engine by
/// itself speaks English to everyone whose language's data is not installed on the machine.
void speakReadersLanguages(WebKitWebContext* context);

} // namespace lumora::platform::linux_backend
