#include "platform/macos/appkit/main_menu.h"

#import <AppKit/AppKit.h>

namespace lumora::platform::macos_backend {

namespace {

constexpr NSEventModifierFlags kCommand = NSEventModifierFlagCommand;
constexpr NSEventModifierFlags kOptionCommand = NSEventModifierFlagOption | NSEventModifierFlagCommand;

/// A row of the menu bar; one without a title is a separator. A capital key means that Shift is held.
struct MenuRow {
    NSString* menu;
    NSString* title = nil;
    NSString* action = nil;
    NSString* key = @"";
    NSEventModifierFlags modifiers = kCommand;
};

NSString* const kApplicationMenu = @"Ovra Tessel Lumora";
NSString* const kWindowMenu = @"Window";
NSString* const kHelpMenu = @"Help";

NSMenu* addMenu(NSMenu* bar, NSString* title) {
    NSMenu* menu = [[NSMenu alloc] initWithTitle:title];
    NSMenuItem* heading = [[NSMenuItem alloc] initWithTitle:title action:nullptr keyEquivalent:@""];
    heading.submenu = menu;
    [bar addItem:heading];
    return menu;
}

NSMenuItem* makeItem(const MenuRow& row) {
    if (row.title == nil) {
        id separator = [NSMenuItem separatorItem];
        return separator;
    }
    NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:row.title
                                                  action:NSSelectorFromString(row.action)
                                           keyEquivalent:row.key];
    item.keyEquivalentModifierMask = row.modifiers;
    return item;
}

} // namespace

void installMainMenu() {
    const MenuRow rows[] = {
        {kApplicationMenu, @"About Ovra Tessel Lumora", @"orderFrontStandardAboutPanel:"},
        {kApplicationMenu},
        {kApplicationMenu, @"Hide Ovra Tessel Lumora", @"hide:", @"h"},
        {kApplicationMenu, @"Hide Others", @"hideOtherApplications:", @"h", kOptionCommand},
        {kApplicationMenu, @"Show All", @"unhideAllApplications:"},
        {kApplicationMenu},
        {kApplicationMenu, @"Uninstall Ovra Tessel Lumora", @"uninstallApp:"},
        {kApplicationMenu},
        {kApplicationMenu, @"Quit Ovra Tessel Lumora", @"terminate:", @"q"},
        {@"Edit", @"Undo", @"undo:", @"z"},
        {@"Edit", @"Redo", @"redo:", @"Z"},
        {@"Edit"},
        {@"Edit", @"Cut", @"cut:", @"x"},
        {@"Edit", @"Copy", @"copy:", @"c"},
        {@"Edit", @"Paste", @"paste:", @"v"},
        {@"Edit", @"Select All", @"selectAll:", @"a"},
        {@"View", @"Reload", @"reload:", @"r"},
        {@"View"},
        {@"View", @"Actual Size", @"actualSize:", @"0"},
        {@"View", @"Zoom In", @"zoomIn:", @"+"},
        {@"View", @"Zoom Out", @"zoomOut:", @"-"},
        {kWindowMenu, @"Minimize", @"performMiniaturize:", @"m"},
        {kWindowMenu, @"Zoom", @"performZoom:"},
        {kWindowMenu, @"Close", @"performClose:", @"w"},
        {kHelpMenu, @"Open Log Folder", @"openLogFolder:"},
    };
    NSMenu* bar = [[NSMenu alloc] initWithTitle:@""];
    NSMenu* menu = nil;
    for (const MenuRow& row : rows) {
        if (![menu.title isEqualToString:row.menu])
            menu = addMenu(bar, row.menu);
        [menu addItem:makeItem(row)];
        if (row.menu == kWindowMenu)
            [NSApp setWindowsMenu:menu];
        if (row.menu == kHelpMenu)
            [NSApp setHelpMenu:menu];
    }
    [NSApp setMainMenu:bar];
}

} // namespace lumora::platform::macos_backend
