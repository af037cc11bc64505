#include "platform/macos/appkit/appkit_menu.h"

#include "platform/macos/foundation/text.h"

#import <AppKit/AppKit.h>

using namespace lumora::platform;

/// Carries an entry's command to its target. The entry itself holds this, and this the entry's port object.
@interface LumoraMenuTarget : NSObject <NSMenuItemValidation> {
    MenuTarget* _target;
    std::shared_ptr<MenuItem> _item;
}
- (instancetype)initWithTarget:(MenuTarget*)target item:(std::shared_ptr<MenuItem>)item;
@end

@implementation LumoraMenuTarget

- (instancetype)initWithTarget:(MenuTarget*)target item:(std::shared_ptr<MenuItem>)item {
    if ((self = [super init])) {
        _target = target;
        _item = std::move(item);
    }
    return self;
}

- (BOOL)validateMenuItem:(NSMenuItem*)item {
    return _target->validateMenuItem(*_item);
}

- (void)uninstallApp:(NSMenuItem*)sender {
    _target->performAction(_item->action());
}

@end

namespace lumora::platform::macos_backend {

namespace {

std::unique_ptr<Menu> menuOver(NSMenu* menu);

class AppKitMenuItem final : public MenuItem, public std::enable_shared_from_this<AppKitMenuItem> {
  public:
    explicit AppKitMenuItem(NSMenuItem* item) : item_(item), submenu_(menuOver(item.submenu)) {}

    std::string title() override { return [item_ isSeparatorItem] ? std::string() : textOf(item_.title); }
    std::string action() override {
        return item_.action == nullptr ? std::string() : textOf(NSStringFromSelector(item_.action));
    }
    Menu* submenu() override { return submenu_.get(); }
    void setTarget(MenuTarget* target) override {
        LumoraMenuTarget* forwarder = [[LumoraMenuTarget alloc] initWithTarget:target
                                                                          item:shared_from_this()];
        item_.representedObject = forwarder; // entries do not keep their targets
        item_.target = forwarder;
    }
    void setAction(const std::string& action) override {
        item_.action = NSSelectorFromString(nsString(action));
    }
    void setHidden(bool hidden) override { item_.hidden = hidden; }
    void setEnabled(bool enabled) override { item_.enabled = enabled; }

  private:
    __weak NSMenuItem* item_;
    std::unique_ptr<Menu> submenu_;
};

class AppKitMenu final : public Menu {
  public:
    explicit AppKitMenu(NSMenu* menu) : menu_(menu) {}

    std::vector<std::shared_ptr<MenuItem>> items() override {
        std::vector<std::shared_ptr<MenuItem>> items;
        for (NSMenuItem* item in menu_.itemArray)
            items.push_back(std::make_shared<AppKitMenuItem>(item));
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
