#include "platform/macos/lumora_application.h"

#include "platform/macos/lumora_app_delegate.h"

@implementation LumoraApplication {
    LumoraAppDelegate* _strongDelegate; // the application itself does not keep its delegate
}

- (void)finishLaunching {
    _strongDelegate = [[LumoraAppDelegate alloc] init];
    self.delegate = _strongDelegate;
    [_strongDelegate awakeFromNib];
    [super finishLaunching];
}

@end
