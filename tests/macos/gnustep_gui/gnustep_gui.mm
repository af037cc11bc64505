// What this system's Foundation and AppKit lack, by what they have.
#import <AppKit/AppKit.h>
#import <objc/runtime.h>

NSString* const NSWorkspaceLaunchConfigurationArguments = @"NSWorkspaceLaunchConfigurationArguments";

@implementation NSApplication (Lumora)
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy {
    return YES;
}
- (void)setHelpMenu:(NSMenu*)menu {
}
- (NSMenu*)helpMenu {
    return nil;
}
@end

@implementation NSMenuItem (Lumora)
- (BOOL)isHidden {
    return NO;
}
- (void)setHidden:(BOOL)hidden {
}
@end

/// The common modes: here each has to be named.
@implementation NSRunLoop (Lumora)
+ (void)load {
    method_exchangeImplementations(class_getInstanceMethod(self, @selector(addTimer:forMode:)),
                                   class_getInstanceMethod(self, @selector(addTimer:forEachMode:)));
}
- (void)addTimer:(NSTimer*)timer forEachMode:(NSString*)mode {
    NSArray* common = @[ NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode ];
    // By these names it is the other's code that runs.
    for (NSString* each in [mode isEqualToString:NSRunLoopCommonModes] ? common : @[ mode ])
        [self addTimer:timer forEachMode:each];
}
@end
