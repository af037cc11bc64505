#pragma once

#include "config/log_handler.h"
#include "platform/menu.h"

#include <functional>
#include <memory>
#include <string>

namespace lumora {

/// Sees the application's life from the first object made to the last call before exit: orders the start-up work and
/// owns the one termination path and the Uninstall command. Main thread. The launch and the end are in
/// app_delegate.cpp, the menu entry in uninstall_menu_item.cpp, the command itself in uninstall_command.cpp.
class AppDelegate final : public platform::MenuTarget {
  public:
    AppDelegate();
    ~AppDelegate() override;
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// The delegate stands, nothing is launched yet: folders, log, preferences.
    void awakeFromNib();
    void applicationWillFinishLaunching();

    /// Hands the launch's network work to the background queue and returns at once.
    void applicationDidFinishLaunching();

    /// Posts the termination notification. Always true. The Quit command does not come this way: it ends the process
    /// without applying a staged update.
    bool applicationShouldTerminateAfterLastWindowClosed();

    /// Handler of "OvraLumoraTerminate": applies a staged update, then ends the application. Runs on the poster's
    /// thread, at most once.
    void terminateApp();

    /// Saves and releases nothing.
    void applicationWillTerminate();

    /// Aims the Uninstall entry of the main menu at this delegate; nothing happens while there is no menu, or none
    /// with such an entry. May be repeated.
    void configureUninstallMenuItem();

    /// True for every entry; the Uninstall entry is made visible and enabled.
    [[nodiscard]] bool validateMenuItem(platform::MenuItem& item) override;

    /// Nothing happens while the Uninstall command runs: where the wait for its script leaves the menu usable, it is
    /// not begun a second time over the first.
    void performAction(const std::string& action) override;

    /// The Uninstall command, from the question to the outcome's alert. Blocks while alerts and the script run.
    void uninstallApp();

    /// The entry that runs the Uninstall command; empty until it is wired.
    [[nodiscard]] std::shared_ptr<platform::MenuItem> uninstallMenuItem() const {
        return uninstallMenuItem_.lock();
    }

  private:
    std::shared_ptr<LogHandler> logHandler_;
    std::weak_ptr<platform::MenuItem> uninstallMenuItem_;
    bool isUninstalling_ = false;
};

/// The first entry that satisfies the predicate, an entry before those of its submenu; empty when none does.
[[nodiscard]] std::shared_ptr<platform::MenuItem>
findMenuItem(platform::Menu& menu, const std::function<bool(platform::MenuItem&)>& where);

} // namespace lumora
