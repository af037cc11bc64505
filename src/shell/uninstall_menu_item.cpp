#include "platform/application.h"
#include "platform/menu.h"
#include "platform/ports.h"
#include "shell/app_delegate.h"

#include <string_view>

namespace lumora {

namespace {

constexpr std::string_view kTitle = "Uninstall Ovra Tessel Lumora";
constexpr const char* kAction = "uninstallApp:";

/// Sets a flag for as long as it lives, however that ends.
class WhileHere {
  public:
    explicit WhileHere(bool& flag) : flag_(flag) { flag_ = true; }
    ~WhileHere() { flag_ = false; }
    WhileHere(const WhileHere&) = delete;
    WhileHere& operator=(const WhileHere&) = delete;

  private:
    bool& flag_;
};

bool isUninstallItem(platform::MenuItem& item) {
    return item.action() == kAction || item.title().find(kTitle) != std::string::npos;
}

void show(platform::MenuItem& item) {
    item.setHidden(false);
    item.setEnabled(true);
}

} // namespace

std::shared_ptr<platform::MenuItem> findMenuItem(platform::Menu& menu,
                                                 const std::function<bool(platform::MenuItem&)>& where) {
    for (const auto& item : menu.items()) {
        if (where(*item))
            return item;
        if (platform::Menu* submenu = item->submenu()) {
            if (auto found = findMenuItem(*submenu, where))
                return found;
        }
    }
    return nullptr;
}

void AppDelegate::configureUninstallMenuItem() {
    platform::Menu* mainMenu = platform::ports().application->mainMenu();
    if (mainMenu == nullptr)
        return;
    const auto item = findMenuItem(*mainMenu, isUninstallItem);
    if (!item)
        return;
    item->setTarget(this);
    item->setAction(kAction);
    show(*item);
    uninstallMenuItem_ = item;
}

bool AppDelegate::validateMenuItem(platform::MenuItem& item) {
    if (item.action() == kAction)
        show(item);
    return true;
}

void AppDelegate::performAction(const std::string& action) {
    if (action != kAction || isUninstalling_)
        return;
    const WhileHere running(isUninstalling_);
    uninstallApp();
}

} // namespace lumora
