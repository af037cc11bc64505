#pragma once

#import <AppKit/AppKit.h>

/// The bundle's principal class. There is no interface file: before the launch goes on, this makes what one would hold,
/// the menu bar and the delegate. Info.plist names it.
@interface LumoraApplication : NSApplication
@end
