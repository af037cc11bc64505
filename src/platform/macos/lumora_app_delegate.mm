#include "platform/macos/lumora_app_delegate.h"

#include "config/log_handler.h"
#include "platform/macos/foundation/text.h"
#include "platform/macos/macos_backend.h"
#include "platform/ports_of.h"
#include "shell/app_delegate.h"
#include "webhost/view_controller.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

using namespace lumora;
namespace macos_backend = platform::macos_backend;

// Registered last and so run first: no static destructor races what still runs.
static void leaveAtOnce() {
    std::fflush(nullptr);
    _exit(EXIT_SUCCESS);
}

// Never destroyed: work on other threads may still use them when the process ends.
@implementation LumoraAppDelegate {
    macos_backend::MacosBackend* _backend;
    AppDelegate* _delegate;
    ViewController* _viewController;
}

- (instancetype)init {
    if ((self = [super init])) {
        _backend = new macos_backend::MacosBackend;
        platform::ports() = platform::portsOf(*_backend);
        _delegate = new AppDelegate;
        _viewController = new ViewController;
    }
    return self;
}

- (void)awakeFromNib {
    [super awakeFromNib];
    _delegate->awakeFromNib();
}

- (void)applicationWillFinishLaunching:(NSNotification*)notification {
    _delegate->applicationWillFinishLaunching();
    ViewController* viewController = _viewController;
    _backend->webViewHost.openWindow([viewController] { viewController->viewDidLoad(); });
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    _delegate->applicationDidFinishLaunching();
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)application {
    return _delegate->applicationShouldTerminateAfterLastWindowClosed();
}

- (void)applicationWillTerminate:(NSNotification*)notification {
    _delegate->applicationWillTerminate();
    std::atexit(leaveAtOnce);
}

// Nothing of the window is restored; without this answer the system complains into the log.
- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)application {
    return YES;
}

- (void)openLogFolder:(id)sender {
    NSString* folder = macos_backend::nsString(LogHandler::logFolder());
    [NSWorkspace.sharedWorkspace openURL:[NSURL fileURLWithPath:folder isDirectory:YES]];
}

@end
