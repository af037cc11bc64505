#pragma once

#import <AppKit/AppKit.h>

namespace lumora::hand {

// How many pixels the window shows, and how many have each of the colours (lists of red, green and blue from
// 0 to 255), give or take `tolerance` in each part: a screen has colours of its own. No pixels: it cannot be
// looked at. Main thread.
NSDictionary* countedColours(NSWindow* window, NSArray<NSArray<NSNumber*>*>* colours, int tolerance);

} // namespace lumora::hand
