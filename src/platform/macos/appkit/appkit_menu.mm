#include "platform/macos/appkit/appkit_menu.h"

#include "platform/macos/foundation/text.h"

#import <AppKit/AppKit.h>

using namespace lumora::platform;

/// Hangs on an entry as its represented object: keeps the entry's port object, and is the target of its
/// command.
@interface LumoraMenuEntry : NSObject <NSMenuItemValidation>
@property(nonatomic, readonly) std::shared_ptr<MenuItem> item;
@property(nonatomic) MenuTarget* target;
- (instancetype)initWithItem:(std::shared_ptr<MenuItem>)item;
@end

@implementation LumoraMenuEntry
- (instancetype)initWithItem:(std::shared_ptr<MenuItem>)item {
    if ((self = [super init]))
        _item = std::move(item);
    return self;
}

- (BOOL)validateMenuItem:(NSMenuItem*)item {
    return self.target->validateMenuItem(*self.item);
}

- (void)uninstallApp:(NSMenuItem*)sender {
    self.target->performAction(macos_backend::textOf(NSStringFromSelector(sender.action)));
}
@end

namespace lumora::platform::macos_backend {

namespace {

std::unique_ptr<Menu> menuOver(NSMenu* menu);

class AppKitMenuItem final : public MenuItem {
  public:
    explicit AppKitMenuItem(NSMenuItem* item) : item_(item), submenu_(menuOver(item.submenu)) {}

    std::string title() override { return textOf(item_.title); }
    std::string action() override {
        return item_.action == nullptr ? std::string() : textOf(NSStringFromSelector(item_.action));
    }
    Menu* submenu() override { return submenu_.get(); }
    void setTarget(MenuTarget* target) override {
        LumoraMenuEntry* entry = item_.representedObject;
        entry.target = target;
        item_.target = entry;
    }
    void setAction(const std::string& action) override {
        item_.action = NSSelectorFromString(nsString(action));
    }
    void setHidden(bool hidden) override { item_.hidden = hidden; }
    void setEnabled(bool enabled) override { item_.enabled = enabled; }

  private:
    __weak NSMenuItem* item_; ///< holds this object
    std::unique_ptr<Menu> submenu_;
};

class AppKitMenu final : public Menu {
  public:
    explicit AppKitMenu(NSMenu* menu) : menu_(menu) {}

    std::vector<std::shared_ptr<MenuItem>> items() override {
        std::vector<std::shared_ptr<MenuItem>> items;
        for (NSMenuItem* item in menu_.itemArray) {
            if (item.representedObject == nil)
                item.representedObject =
                    [[LumoraMenuEntry alloc] initWithItem:std::make_shared<AppKitMenuItem>(item)];
            LumoraMenuEntry* entry = item.representedObject;
            items.push_back(entry.item);
        }
        return items;
    }

  private:
    NSMenu* menu_;
};

std::unique_ptr<Menu> menuOver(NSMenu* menu) {
    return menu == nil ? nullptr : std::make_unique<AppKitMenu>(menu);
}

} // namespace

std::unique_ptr<Menu> menuBar() { return menuOver([NSApp mainMenu]); }

} // namespace lumora::platform::macos_backend
