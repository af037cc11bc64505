#pragma once

#include "platform/linux/glib_handles.h"
#include "shell/main_menu.h"

#include <gio/gio.h>

#include <functional>
#include <string>

namespace lumora::platform::linux_backend {

/// Adds an action that runs a command.
/// @return the action, which the map owns
GSimpleAction* addAction(GActionMap* map, const char* name, std::function<void()> command);

/// An entry of the menu bar on the screen. It does its built-in command until it gets a target; then it is an action of
/// its own, which asks the target. Hiding and disabling take effect from then on. Main thread.
class ShownEntry {
  public:
    /// Appends it to the section.
    /// @param command  the built-in command's action, or nullptr
    ShownEntry(GActionMap* actions, GMenu* section, MenuEntry& entry, const char* command);

    /// Shows the entry as it is now.
    void update();

  private:
    void takeOver();

    GActionMap* const actions_;
    ObjectRef<GMenu> section_;
    const int position_;
    MenuEntry& entry_;
    std::string ownAction_; ///< its name in the map; empty until there is a target
};

} // namespace lumora::platform::linux_backend
