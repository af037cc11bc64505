#include "platform/linux/gui/menu_entries.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace lumora::platform::linux_backend {

namespace {

using Command = std::function<void()>;

void runCommand(GSimpleAction*, GVariant*, gpointer command) { (*static_cast<Command*>(command))(); }

void deleteCommand(gpointer command, GClosure*) { delete static_cast<Command*>(command); }

std::string withoutMnemonic(std::string title) {
    std::erase(title, '_');
    return title;
}

/// A title of the menu bar: it opens a menu and has no command.
class MenuTitle final : public MenuItem {
  public:
    MenuTitle(std::string title, std::unique_ptr<Menu> menu)
        : title_(std::move(title)), menu_(std::move(menu)) {}

    [[nodiscard]] std::string title() override { return withoutMnemonic(title_); }
    [[nodiscard]] std::string action() override { return {}; }
    [[nodiscard]] Menu* submenu() override { return menu_.get(); }
    // A menu of the bar always opens: there is nothing that a target could be told, and no menu to hide.
    void setTarget(MenuTarget*) override {}
    void setAction(const std::string&) override {}
    void setHidden(bool) override {}
    void setEnabled(bool) override {}

  private:
    const std::string title_;
    const std::unique_ptr<Menu> menu_;
};

} // namespace

GSimpleAction* addAction(GActionMap* map, const char* name, std::function<void()> command) {
    const auto action = ObjectRef<GSimpleAction>::adopt(g_simple_action_new(name, nullptr));
    g_signal_connect_data(action.get(), "activate", G_CALLBACK(runCommand), new Command(std::move(command)),
                          deleteCommand, GConnectFlags{});
    g_action_map_add_action(map, G_ACTION(action.get()));
    return action.get();
}

MenuEntry::MenuEntry(GActionMap* actions, GMenu* section, std::string title, const char* command)
    : actions_(actions), section_(ObjectRef<GMenu>::retain(section)),
      position_(g_menu_model_get_n_items(G_MENU_MODEL(section))), title_(std::move(title)),
      action_(textOf(command)) {
    g_menu_append(section, title_.c_str(), command);
}

std::string MenuEntry::title() { return withoutMnemonic(title_); }

void MenuEntry::setTarget(MenuTarget* target) {
    target_ = target;
    if (!ownAction_.empty())
        return;
    ownAction_ = fmt::format("entry-{}", fmt::ptr(this));
    const auto item = ObjectRef<GMenuItem>::adopt(
        g_menu_item_new(title_.c_str(), fmt::format("app.{}", ownAction_).c_str()));
    g_menu_item_set_attribute(item.get(), "hidden-when", "s", "action-missing");
    g_menu_remove(section_.get(), position_);
    g_menu_insert_item(section_.get(), position_, item.get());
    show();
}

void MenuEntry::setHidden(bool hidden) {
    hidden_ = hidden;
    show();
}

void MenuEntry::setEnabled(bool enabled) {
    enabled_ = enabled;
    show();
}

void MenuEntry::show() {
    if (ownAction_.empty())
        return;
    if (hidden_) {
        g_action_map_remove_action(actions_, ownAction_.c_str());
        return;
    }
    GAction* action = g_action_map_lookup_action(actions_, ownAction_.c_str());
    if (action == nullptr)
        action = G_ACTION(addAction(actions_, ownAction_.c_str(), [this] { chosen(); }));
    g_simple_action_set_enabled(G_SIMPLE_ACTION(action), enabled_ ? TRUE : FALSE);
}

void MenuEntry::chosen() {
    if (target_ != nullptr && target_->validateMenuItem(*this))
        target_->performAction(action_);
}

void MenuOfEntries::add(GActionMap* actions, GMenu* section, const char* title, const char* command) {
    entries_.push_back(std::make_shared<MenuEntry>(actions, section, title, command));
}

void BarOfMenus::add(std::string title, std::unique_ptr<Menu> menu) {
    menus_.push_back(std::make_shared<MenuTitle>(std::move(title), std::move(menu)));
}

} // namespace lumora::platform::linux_backend
