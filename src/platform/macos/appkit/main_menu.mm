#include "platform/macos/appkit/main_menu.h"

#include "platform/macos/foundation/text.h"
#include "shell/main_menu.h"
#include "support/exception_guard.h"

#import <AppKit/AppKit.h>

/// Carries an entry's command to the target that the entry has got.
@interface LumoraMenuTarget : NSObject <NSMenuItemValidation> {
  @public
    std::shared_ptr<lumora::MenuEntry> entry;
}
@end

@implementation LumoraMenuTarget
- (BOOL)validateMenuItem:(NSMenuItem*)item {
    return entry->isAllowed();
}

- (void)uninstallApp:(NSMenuItem*)sender {
    lumora::guarded(__func__, [self] { entry->choose(); });
}
@end

namespace lumora::platform::macos_backend {

namespace {

// Entry and item keep each other: the menu bar lives as long as the process.
NSMenuItem* itemFor(const std::shared_ptr<MenuEntry>& entry) {
    NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:nsString(entry->title())
                                                  action:NSSelectorFromString(nsString(entry->action()))
                                           keyEquivalent:nsString(entry->row.key)];
    if (entry->row.withOption)
        item.keyEquivalentModifierMask = NSEventModifierFlagOption | NSEventModifierFlagCommand;
    LumoraMenuTarget* target = [[LumoraMenuTarget alloc] init];
    target->entry = entry;
    entry->changed = [item, target] {
        item.action = NSSelectorFromString(nsString(target->entry->action()));
        item.target = target->entry->hasTarget() ? target : nil;
        item.hidden = target->entry->isHidden();
        item.enabled = target->entry->isEnabled();
    };
    return item;
}

} // namespace

std::unique_ptr<Menu> installMainMenu() {
    auto menus = std::make_unique<MainMenu>([](const std::string&) { return true; });
    NSMenu* bar = [[NSMenu alloc] initWithTitle:@""];
    for (const auto& heading : menus->headings) {
        NSMenu* menu = [[NSMenu alloc] initWithTitle:nsString(heading->title())];
        [bar addItemWithTitle:menu.title action:nullptr keyEquivalent:@""].submenu = menu;
        for (const auto& entry : heading->entries)
            [menu addItem:entry->isSeparator() ? [NSMenuItem separatorItem] : itemFor(entry)];
        if (heading->title() == "Window")
            [NSApp setWindowsMenu:menu];
        if (heading->title() == "Help")
            [NSApp setHelpMenu:menu];
    }
    [NSApp setMainMenu:bar];
    return menus;
}

} // namespace lumora::platform::macos_backend
