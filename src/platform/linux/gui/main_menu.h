#pragma once

#include "platform/menu.h"

#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include <functional>
#include <memory>

namespace lumora::platform::linux_backend {

/// What the menu bar does outside the window.
struct MenuCommands {
    std::function<void()> quit;
    std::function<void()> openLogFolder;
};

/// Gives the application its menu bar and shortcuts. Once, before its first window.
/// @return the menu bar as the core sees it. An entry that gets a target leaves its built-in command.
[[nodiscard]] std::unique_ptr<Menu> installMenuBar(GtkApplication* application, MenuCommands commands);

/// Connects the menu entries that act on the window and the page in it.
void installWindowActions(GtkApplicationWindow* window, WebKitWebView* view);

/// Whether a menu of the window is open: menu bar, context menu, or a choice list of the page.
[[nodiscard]] bool menuIsOpen(GtkWidget* window);

} // namespace lumora::platform::linux_backend
