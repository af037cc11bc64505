#include "platform/macos/appkit/appkit_workspace.h"

#include "platform/macos/addresses.h"
#include "platform/macos/foundation/objc_exceptions.h"

#import <AppKit/AppKit.h>

namespace lumora::platform::macos_backend {

bool AppKitWorkspace::openUrl(const std::string& url) {
    return atPort([&] { return [NSWorkspace.sharedWorkspace openURL:addressFrom(url)] == YES; });
}

// The call is deprecated. Its successor answers through a completion handler, too late for the caller, who
// goes on as soon as the launch has been asked for.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
Result<void> AppKitWorkspace::launchApplication(const std::string& bundlePath,
                                                const std::vector<std::string>& arguments) {
    return atPort([&]() -> Result<void> {
        NSError* error = nil;
        NSRunningApplication* application = [NSWorkspace.sharedWorkspace
            launchApplicationAtURL:[NSURL fileURLWithPath:nsString(bundlePath)]
                           options:NSWorkspaceLaunchAsync
                     configuration:@{NSWorkspaceLaunchConfigurationArguments : listOf(arguments)}
                             error:&error];
        if (application == nil)
            return errorOf(error);
        return {};
    });
}
#pragma clang diagnostic pop

} // namespace lumora::platform::macos_backend
