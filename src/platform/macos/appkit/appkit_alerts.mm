#include "platform/macos/appkit/appkit_alerts.h"

#include "platform/macos/foundation/objc_exceptions.h"

#import <AppKit/AppKit.h>

namespace lumora::platform::macos_backend {

int AppKitAlerts::runModal(const Alert& alert) {
    return atPort([&] {
        NSAlert* window = [[NSAlert alloc] init];
        window.messageText = nsString(alert.messageText);
        window.informativeText = nsString(alert.informativeText);
        window.alertStyle = static_cast<NSAlertStyle>(alert.style);
        for (const auto& title : alert.buttons)
            [window addButtonWithTitle:nsString(title)];
        return static_cast<int>([window runModal]);
    });
}

} // namespace lumora::platform::macos_backend
