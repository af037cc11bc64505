#pragma once

#include "platform/menu.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace lumora {

/// One row of the menu bar; a separator has no title.
struct MenuRow {
    const char* menu;        ///< the title of the menu that it stands in
    const char* title = "";  ///< both with an underscore before the letter for the keyboard
    const char* action = ""; ///< the command's name, which each backend knows
    const char* key = "";    ///< held with the platform's command key; a capital means with Shift too
    bool withOption = false; ///< with the platform's option key too
};

/// The title as it is read, without its underscore.
[[nodiscard]] std::string readableTitle(const std::string& title);

/// One entry of the menu bar: what the core knows and changes, and the backend shows. Main thread.
class MenuEntry final : public platform::MenuItem {
  public:
    explicit MenuEntry(const MenuRow& shown) : row(shown), action_(shown.action) {}

    [[nodiscard]] std::string title() override { return readableTitle(row.title); }
    [[nodiscard]] std::string action() override { return action_; }
    [[nodiscard]] platform::Menu* submenu() override { return nullptr; }
    void setTarget(platform::MenuTarget* target) override;
    void setAction(const std::string& action) override;
    void setHidden(bool hidden) override;
    void setEnabled(bool enabled) override;

    [[nodiscard]] bool isSeparator() { return title().empty(); }
    [[nodiscard]] bool hasTarget() const { return target_ != nullptr; }
    [[nodiscard]] bool isHidden() const { return hidden_; }
    [[nodiscard]] bool isEnabled() const { return enabled_; }

    /// What the target says of the entry now.
    [[nodiscard]] bool isAllowed();

    /// The user has chosen the entry, which has a target: performed unless that refuses.
    void choose();

    const MenuRow row;
    std::function<void()> changed = [] {}; ///< called when the entry is to be shown otherwise

  private:
    std::string action_;
    platform::MenuTarget* target_ = nullptr;
    bool hidden_ = false;
    bool enabled_ = true;
};

/// A menu of the bar, and its title there, of which nothing can be changed.
class MenuHeading final : public platform::MenuItem, private platform::Menu {
  public:
    explicit MenuHeading(const char* title) : markedTitle(title) {}

    [[nodiscard]] std::string title() override { return readableTitle(markedTitle); }
    [[nodiscard]] std::string action() override { return {}; }
    [[nodiscard]] platform::Menu* submenu() override { return this; }
    void setTarget(platform::MenuTarget*) override {}
    void setAction(const std::string&) override {}
    void setHidden(bool) override {}
    void setEnabled(bool) override {}

    const std::string markedTitle; ///< with its underscore
    std::vector<std::shared_ptr<MenuEntry>> entries;

  private:
    std::vector<std::shared_ptr<platform::MenuItem>> items() override {
        return {entries.begin(), entries.end()};
    }
};

/// The menu bar, as a backend builds it on the screen and the core searches it.
class MainMenu final : public platform::Menu {
  public:
    /// @param offers  whether the platform has a use for the action: rows of others, and separators of nothing, are left out
    explicit MainMenu(const std::function<bool(const std::string& action)>& offers);

    std::vector<std::shared_ptr<platform::MenuItem>> items() override {
        return {headings.begin(), headings.end()};
    }

    std::vector<std::shared_ptr<MenuHeading>> headings;
};

} // namespace lumora
