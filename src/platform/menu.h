#pragma once

#include <memory>
#include <string>
#include <vector>

namespace lumora::platform {

class Menu;
class MenuItem;

/// Whom a menu entry's command reaches. Main thread.
class MenuTarget {
  public:
    virtual ~MenuTarget() = default;

    /// Asked before the entry's command is performed and, where the platform does so, before the entry is shown; false
    /// disables it.
    [[nodiscard]] virtual bool validateMenuItem(MenuItem& item) = 0;

    /// The entry was chosen. The action is the entry's own, e.g. "uninstallApp:".
    virtual void performAction(const std::string& action) = 0;
};

/// One entry of a menu. Main thread.
class MenuItem {
  public:
    virtual ~MenuItem() = default;

    /// As the user reads it, without marks for keyboard access.
    [[nodiscard]] virtual std::string title() = 0;

    /// The command's name, empty when there is none.
    [[nodiscard]] virtual std::string action() = 0;

    /// The menu that the entry opens, or null.
    [[nodiscard]] virtual Menu* submenu() = 0;

    /// Not owned; outlives the menu.
    virtual void setTarget(MenuTarget* target) = 0;
    virtual void setAction(const std::string& action) = 0;
    virtual void setHidden(bool hidden) = 0;
    virtual void setEnabled(bool enabled) = 0;
};

/// A menu, the menu bar included. Main thread.
class Menu {
  public:
    virtual ~Menu() = default;

    /// The entries in their order, separators included (an empty title, no action).
    [[nodiscard]] virtual std::vector<std::shared_ptr<MenuItem>> items() = 0;
};

} // namespace lumora::platform
