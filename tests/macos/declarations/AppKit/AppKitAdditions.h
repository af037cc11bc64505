// What AppKit has on macOS and not in this system's headers: each declaration exactly as the platform
// documents it, with its availability, and nothing that no source uses.
#pragma once

#include <os/availability.h>

NS_ASSUME_NONNULL_BEGIN

#ifdef __cplusplus
extern "C" {
#endif

typedef NS_OPTIONS(NSUInteger, NSEventModifierFlags) {
    NSEventModifierFlagOption = 1 << 19,
    NSEventModifierFlagCommand = 1 << 20,
};

// There values of NSEventType's own.
static const NSEventType NSEventTypeApplicationDefined API_AVAILABLE(macos(10.12)) = NSApplicationDefined;
static const NSEventType NSEventTypeKeyDown API_AVAILABLE(macos(10.12)) = NSKeyDown;
static const NSEventType NSEventTypeKeyUp API_AVAILABLE(macos(10.12)) = NSKeyUp;
static const NSEventType NSEventTypeLeftMouseDown API_AVAILABLE(macos(10.12)) = NSLeftMouseDown;
static const NSEventType NSEventTypeLeftMouseUp API_AVAILABLE(macos(10.12)) = NSLeftMouseUp;

typedef NSRect CGRect; // on macOS it is the other way round

typedef NSString* NSWorkspaceLaunchConfigurationKey;
extern NSWorkspaceLaunchConfigurationKey const NSWorkspaceLaunchConfigurationArguments
    API_DEPRECATED("Use -[NSWorkspaceOpenConfiguration setArguments:] instead.", macos(10.6, 11.0));

#ifdef __cplusplus
}
#endif

@protocol NSMenuItemValidation <NSObject>
- (BOOL)validateMenuItem:(NSMenuItem*)menuItem;
@end

@interface NSMenuItem (Additions)
@property(getter=isHidden) BOOL hidden API_AVAILABLE(macos(10.5));
@end

@interface NSApplication (Additions)
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy API_AVAILABLE(macos(10.6));
@property(nullable, strong) NSMenu* helpMenu API_AVAILABLE(macos(10.6));
@end

@interface NSViewController (Additions)
- (void)viewDidLoad API_AVAILABLE(macos(10.10));
@end

@interface NSWindow (Additions)
+ (instancetype)windowWithContentViewController:(NSViewController*)contentViewController
    API_AVAILABLE(macos(10.10));
@end

@interface NSWorkspace (Additions)
- (nullable NSRunningApplication*)
    launchApplicationAtURL:(NSURL*)url
                   options:(NSWorkspaceLaunchOptions)options
             configuration:(NSDictionary<NSWorkspaceLaunchConfigurationKey, id>*)configuration
                     error:(NSError**)error
    API_DEPRECATED("Use -[NSWorkspace openApplicationAtURL:configuration:completionHandler:] instead.",
                   macos(10.6, 11.0));
@end

NS_ASSUME_NONNULL_END
