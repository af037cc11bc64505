#include "platform/macos/appkit/appkit_application.h"

#include "platform/macos/appkit/main_menu.h"

#import <AppKit/AppKit.h>

namespace lumora::platform::macos_backend {

AppKitApplication::AppKitApplication() : mainMenu_(installMainMenu()) {}

void AppKitApplication::terminate() {
    // Queued: the request itself ends the process before it returns, also within a delegate's call.
    [NSApp performSelectorOnMainThread:@selector(terminate:) withObject:[NSApp delegate] waitUntilDone:NO];
}

} // namespace lumora::platform::macos_backend
