#include "platform/macos/appkit/appkit_application.h"

#include "platform/macos/appkit/appkit_menu.h"

#import <AppKit/AppKit.h>

namespace lumora::platform::macos_backend {

AppKitApplication::AppKitApplication() = default;

AppKitApplication::~AppKitApplication() = default;

void AppKitApplication::terminate() {
    // Queued: the request itself ends the process before it returns, also within a delegate's call.
    [NSApp performSelectorOnMainThread:@selector(terminate:) withObject:[NSApp delegate] waitUntilDone:NO];
}

Menu* AppKitApplication::mainMenu() {
    if (!mainMenu_)
        mainMenu_ = menuBar();
    return mainMenu_.get();
}

} // namespace lumora::platform::macos_backend
