#pragma once

#include "platform/linux/glib_handles.h"
#include "platform/menu.h"

#include <gio/gio.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace lumora::platform::linux_backend {

/// Adds an action that runs a command.
/// @return the action, which the map owns
GSimpleAction* addAction(GActionMap* map, const char* name, std::function<void()> command);

/// One row of a menu on the screen. It does its built-in command until it gets a target; then it is an action of its
/// own, which asks the target. Hiding and disabling take effect from then on. Main thread.
class MenuEntry final : public MenuItem {
  public:
    /// @param title    with an underscore before the letter for the keyboard
    /// @param command  the built-in command's action, or nullptr
    MenuEntry(GActionMap* actions, GMenu* section, std::string title, const char* command);

    [[nodiscard]] std::string title() override;
    [[nodiscard]] std::string action() override { return action_; }
    [[nodiscard]] Menu* submenu() override { return nullptr; }
    void setTarget(MenuTarget* target) override;
    void setAction(const std::string& action) override { action_ = action; }
    void setHidden(bool hidden) override;
    void setEnabled(bool enabled) override;

  private:
    void show();
    void chosen();

    GActionMap* const actions_;
    ObjectRef<GMenu> section_;
    const int position_;
    const std::string title_;
    std::string action_;
    std::string ownAction_; ///< its name in the map; empty until there is a target
    MenuTarget* target_ = nullptr;
    bool hidden_ = false;
    bool enabled_ = true;
};

/// One menu of the bar.
class MenuOfEntries final : public Menu {
  public:
    void add(GActionMap* actions, GMenu* section, const char* title, const char* command);
    [[nodiscard]] std::vector<std::shared_ptr<MenuItem>> items() override { return entries_; }

  private:
    std::vector<std::shared_ptr<MenuItem>> entries_;
};

/// The menu bar.
class BarOfMenus final : public Menu {
  public:
    void add(std::string title, std::unique_ptr<Menu> menu);
    [[nodiscard]] std::vector<std::shared_ptr<MenuItem>> items() override { return menus_; }

  private:
    std::vector<std::shared_ptr<MenuItem>> menus_;
};

} // namespace lumora::platform::linux_backend
