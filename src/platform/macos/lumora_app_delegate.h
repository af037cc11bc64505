#pragma once

#import <AppKit/AppKit.h>

/// Makes the backend and hands the application's life on to the core's delegate and view controller, unchanged.
@interface LumoraAppDelegate : NSObject <NSApplicationDelegate>
@end
