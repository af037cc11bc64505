#include "desktop.h"
#include "platform/macos/appkit/appkit_alerts.h"
#include "platform/macos/appkit/appkit_application.h"
#include "platform/macos/appkit/appkit_main_loop.h"
#include "platform/macos/foundation/text.h"

#import <AppKit/AppKit.h>
#include <algorithm>
#include <cstdlib>

namespace lumora::contract {

namespace backend = platform::macos_backend;
using backend::textOf;

namespace {

using Texts = std::vector<std::string>;

/// A modal loop looks after each event whether it is to end.
void wakeModalLoop() {
    [NSApp postEvent:[NSEvent otherEventWithType:NSEventTypeApplicationDefined
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:0
                                         context:nil
                                         subtype:0
                                           data1:0
                                           data2:0]
             atStart:NO];
}

void collectControls(NSView* view, Class kind, std::vector<NSControl*>& found) {
    if ([view isHidden])
        return;
    if ([view isKindOfClass:kind])
        found.push_back(static_cast<NSControl*>(view));
    if ([view isKindOfClass:[NSControl class]])
        return; // what a control is made of is its own
    for (NSView* child in view.subviews)
        collectControls(child, kind, found);
}

/// Those of a window that a user sees, from top to bottom and from left to right.
std::vector<NSControl*> controls(NSWindow* window, Class kind) {
    std::vector<NSControl*> found;
    collectControls(window.contentView, kind, found);
    std::sort(found.begin(), found.end(), [](NSControl* one, NSControl* other) {
        const NSRect first = [one convertRect:one.bounds toView:nil];
        const NSRect second = [other convertRect:other.bounds toView:nil];
        return NSMaxY(first) != NSMaxY(second) ? NSMaxY(first) > NSMaxY(second)
                                               : NSMinX(first) < NSMinX(second);
    });
    return found;
}

class AppKitAlertsOnScreen final : public AlertsOnScreen {
  public:
    platform::Alerts& alerts() override { return alerts_; }

    bool isOneThere() override {
        if ([NSApp modalWindow] != nil)
            window_ = [NSApp modalWindow];
        return [window_ isVisible];
    }

    bool isModal() override { return window_ != nil && [NSApp modalWindow] == window_; }

    Texts texts() override {
        Texts texts;
        for (NSControl* field : controls(window_, [NSTextField class]))
            if (field.stringValue.length > 0)
                texts.push_back(textOf(field.stringValue));
        return texts;
    }

    Texts buttons() override {
        Texts titles;
        for (NSButton* button : buttonsOf(window_))
            titles.push_back(textOf(button.title));
        return titles;
    }

    void press(const std::string& title) override {
        for (NSButton* button : buttonsOf(window_))
            if (textOf(button.title) == title)
                [button performClick:nil];
        wakeModalLoop();
    }

    void dismiss() override {
        [NSApp stopModalWithCode:NSModalResponseAbort];
        wakeModalLoop();
    }

  private:
    /// Those that show a title.
    static std::vector<NSButton*> buttonsOf(NSWindow* window) {
        std::vector<NSButton*> buttons;
        for (NSControl* control : controls(window, [NSButton class])) {
            NSButton* button = static_cast<NSButton*>(control);
            if (button.imagePosition != NSImageOnly)
                buttons.push_back(button);
        }
        return buttons;
    }

    backend::AppKitAlerts alerts_;
    NSWindow* window_ = nil; ///< the alert that was there last
};

void collectRows(NSMenu* menu, std::vector<MenuBarOnScreen::Row>& rows) {
    for (NSMenuItem* item in menu.itemArray) {
        if ([item isSeparatorItem])
            continue;
        const bool acts = item.submenu == nil && item.action != nullptr;
        rows.push_back({textOf(item.title), acts ? textOf(NSStringFromSelector(item.action)) : ""});
        collectRows(item.submenu, rows);
    }
}

NSMenuItem* itemTitled(NSString* title, NSMenu* menu) {
    for (NSMenuItem* item in menu.itemArray) {
        if ([item.title isEqualToString:title] && item.submenu == nil)
            return item;
        if (NSMenuItem* found = itemTitled(title, item.submenu))
            return found;
    }
    return nil;
}

class AppKitMenuBarOnScreen final : public MenuBarOnScreen {
  public:
    platform::Menu& menu() override { return *application_.mainMenu(); }

    std::vector<Row> rows() override {
        std::vector<Row> rows;
        collectRows([NSApp mainMenu], rows);
        return rows;
    }

    bool choose(const std::string& title) override {
        NSMenuItem* item = itemTitled(backend::nsString(title), [NSApp mainMenu]);
        [item.menu update]; // as when the menu opens
        if (item == nil || [item isHidden] || ![item isEnabled])
            return false;
        [item.menu performActionForItemAtIndex:[item.menu indexOfItem:item]];
        return true;
    }

  private:
    backend::AppKitApplication application_;
};

} // namespace

std::unique_ptr<AlertsOnScreen> makeAlertsOnScreen() { return std::make_unique<AppKitAlertsOnScreen>(); }

std::unique_ptr<MenuBarOnScreen> makeMenuBarOnScreen() { return std::make_unique<AppKitMenuBarOnScreen>(); }

void runApplication(const std::function<void(platform::Application&)>& steps) {
    backend::AppKitApplication application;
    backend::AppKitMainLoop().asyncOnMain([&] { steps(application); });
    [NSApp run];
    std::_Exit(EXIT_FAILURE); // the end of the application is that of the process
}

} // namespace lumora::contract
