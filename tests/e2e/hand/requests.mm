#include "requests.h"

#include "window_picture.h"

#import <AppKit/AppKit.h>

#include <initializer_list>

namespace lumora::hand {

namespace {

NSDictionary* done() {
    return @{@"done" : @YES};
}

Outcome failure(NSString* why) {
    return { @{@"error" : why}, nil };
}

// Those that a person sees as windows: the system keeps others.
NSArray<NSWindow*>* windows() {
    NSMutableArray<NSWindow*>* found = [NSMutableArray array];
    for (NSWindow* window in NSApplication.sharedApplication.windows)
        if (window.isVisible && (window.styleMask & NSWindowStyleMaskTitled) != 0)
            [found addObject:window];
    return found;
}

NSDictionary* listOfWindows() {
    NSMutableArray* list = [NSMutableArray array];
    for (NSWindow* window in windows())
        [list addObject:@{
            @"number" : @(window.windowNumber),
            @"title" : window.title,
            @"key" : @(window.isKeyWindow)
        }];
    return @{@"windows" : list};
}

void bringToFront(NSWindow* window) {
    [NSApplication.sharedApplication activateIgnoringOtherApps:YES];
    [window makeKeyAndOrderFront:nil];
}

// Only these are told apart by their codes: a text is told by its characters.
unsigned short keyCode(NSString* characters) {
    if ([characters isEqualToString:@"\r"])
        return 36;
    return [characters isEqualToString:@"\t"] ? 48 : 0;
}

NSTimeInterval now() { return static_cast<NSTimeInterval>(NSProcessInfo.processInfo.systemUptime); }

NSEvent* keyEvent(NSEventType type, NSString* characters, NSEventModifierFlags flags, NSWindow* window) {
    return [NSEvent keyEventWithType:type
                            location:NSZeroPoint
                       modifierFlags:flags
                           timestamp:now()
                        windowNumber:window.windowNumber
                             context:nil
                          characters:characters
         charactersIgnoringModifiers:characters
                           isARepeat:NO
                             keyCode:keyCode(characters)];
}

// The action of the menu's entry for the key, from the window's own focus on: the window need not be the one
// in front.
void chooseByKey(NSString* key, NSMenu* menu, NSWindow* window) {
    for (NSMenuItem* item in menu.itemArray) {
        if (item.submenu != nil)
            chooseByKey(key, item.submenu, window);
        else if ([item.keyEquivalent isEqualToString:key] && ![window.firstResponder tryToPerform:item.action
                                                                                             with:item])
            [NSApplication.sharedApplication sendAction:item.action to:item.target from:item];
    }
}

void press(NSString* key, bool command, NSWindow* window) {
    const NSEventModifierFlags flags = command ? NSEventModifierFlagCommand : 0;
    NSEvent* down = keyEvent(NSEventTypeKeyDown, key, flags, window);
    NSMenu* menu = NSApplication.sharedApplication.mainMenu;
    if (command) {
        if (!window.isKeyWindow || ![menu performKeyEquivalent:down])
            chooseByKey(key, menu, window);
        return;
    }
    [window sendEvent:down];
    [window sendEvent:keyEvent(NSEventTypeKeyUp, key, flags, window)];
}

// x and y count from the content's upper left corner.
void click(CGFloat x, CGFloat y, NSWindow* window) {
    NSView* content = window.contentView;
    const NSPoint place = NSMakePoint(x, NSHeight(content.frame) - y);
    for (const NSEventType type : {NSEventTypeLeftMouseDown, NSEventTypeLeftMouseUp})
        [window sendEvent:[NSEvent mouseEventWithType:type
                                             location:place
                                        modifierFlags:0
                                            timestamp:now()
                                         windowNumber:window.windowNumber
                                              context:nil
                                          eventNumber:0
                                           clickCount:1
                                             pressure:1]];
}

void choose(NSString* entry, NSMenu* menu) {
    for (NSMenuItem* item in menu.itemArray) {
        if ([item.title isEqualToString:entry])
            return [menu performActionForItemAtIndex:[menu indexOfItem:item]];
        if (item.submenu != nil)
            choose(entry, item.submenu);
    }
}

Outcome afterwards(dispatch_block_t deed) { return {done(), deed}; }

Outcome performAt(NSWindow* window, NSDictionary* request) {
    NSString* what = request[@"do"];
    if ([what isEqualToString:@"count"])
        return {countedColours(window, request[@"colours"], [request[@"tolerance"] intValue]), nil};
    if ([what isEqualToString:@"close"])
        return afterwards(^{
            [window performClose:nil];
        });
    if ([what isEqualToString:@"activate"])
        return afterwards(^{
            bringToFront(window);
        });
    if ([what isEqualToString:@"press"])
        return afterwards(^{
            press(request[@"key"], [request[@"command"] boolValue], window);
        });
    if ([what isEqualToString:@"click"])
        return afterwards(^{
            click([request[@"x"] doubleValue], [request[@"y"] doubleValue], window);
        });
    if ([what isEqualToString:@"choose"])
        return afterwards(^{
            choose(request[@"entry"], NSApplication.sharedApplication.mainMenu);
        });
    return failure(@"nothing that can be done");
}

} // namespace

Outcome perform(NSDictionary* request) {
    if ([request[@"do"] isEqual:@"windows"])
        return {listOfWindows(), nil};
    for (NSWindow* window in windows())
        if (window.windowNumber == [request[@"window"] integerValue])
            return performAt(window, request);
    return failure(@"no such window");
}

} // namespace lumora::hand
