#pragma once

#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include <functional>

namespace lumora::platform::linux_backend {

/// What the menu bar does outside the window.
struct MenuCommands {
    std::function<void()> quit;
    std::function<void()> openLogFolder;
};

/// Gives the application its menu bar and shortcuts. Once, before its first window.
void installMenuBar(GtkApplication* application, MenuCommands commands);

/// Connects the menu entries that act on the window and the page in it.
void installWindowActions(GtkApplicationWindow* window, WebKitWebView* view);

/// Whether a menu of the window is open: menu bar, context menu, or a choice list of the page.
[[nodiscard]] bool menuIsOpen(GtkWidget* window);

} // namespace lumora::platform::linux_backend
