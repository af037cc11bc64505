#include "platform/linux/gui/main_menu.h"

#include "platform/linux/glib_handles.h"
#include "platform/linux/gui/menu_entries.h"
#include "webhost/page_zoom.h"

#include <array>
#include <memory>
#include <utility>

namespace lumora::platform::linux_backend {

namespace {

/// A row of the menu bar. Rows of one section stand together between two separators.
struct MenuRow {
    const char* menu;
    int section;
    const char* title;
    const char* action;   ///< or nullptr: the entry does nothing until it gets a target
    const char* shortcut; ///< or nullptr
};

constexpr MenuRow kRows[] = {
    {"_Lumora", 0, "_Uninstall Ovra Tessel Lumora", nullptr, nullptr},
    {"_Lumora", 1, "_Quit Ovra Tessel Lumora", "app.quit", "<Control>q"},
    {"_Edit", 0, "_Undo", "win.undo", "<Control>z"},
    {"_Edit", 0, "_Redo", "win.redo", "<Shift><Control>z"},
    {"_Edit", 1, "Cu_t", "win.cut", "<Control>x"},
    {"_Edit", 1, "_Copy", "win.copy", "<Control>c"},
    {"_Edit", 1, "_Paste", "win.paste", "<Control>v"},
    {"_Edit", 2, "Select _All", "win.select-all", "<Control>a"},
    {"_View", 0, "_Reload", "win.reload", "<Control>r"},
    {"_View", 1, "_Actual Size", "win.zoom-reset", "<Control>0"},
    {"_View", 1, "Zoom _In", "win.zoom-in", "<Control>plus"},
    {"_View", 1, "Zoom _Out", "win.zoom-out", "<Control>minus"},
    {"_Window", 0, "_Minimise", "win.minimise", "<Control>m"},
    {"_Window", 0, "_Close", "win.close-window", "<Control>w"},
    {"_Help", 0, "Open _Log Folder", "app.open-log-folder", nullptr},
};

struct EditingRow {
    const char* action;
    const char* command;
};

constexpr EditingRow kEditing[] = {
    {"undo", WEBKIT_EDITING_COMMAND_UNDO},   {"redo", WEBKIT_EDITING_COMMAND_REDO},
    {"cut", WEBKIT_EDITING_COMMAND_CUT},     {"copy", WEBKIT_EDITING_COMMAND_COPY},
    {"paste", WEBKIT_EDITING_COMMAND_PASTE}, {"select-all", WEBKIT_EDITING_COMMAND_SELECT_ALL},
};

void zoom(WebKitWebView* view, double (*next)(double level)) {
    webkit_web_view_set_zoom_level(view, next(webkit_web_view_get_zoom_level(view)));
}

/// Builds the menu bar for the screen and, beside it, the one that the core sees.
std::unique_ptr<BarOfMenus> buildMenuBar(GActionMap* actions, GMenu* bar) {
    auto menus = std::make_unique<BarOfMenus>();
    for (const MenuRow* row = std::begin(kRows); row != std::end(kRows);) {
        const char* title = row->menu;
        const auto menu = ObjectRef<GMenu>::adopt(g_menu_new());
        auto entries = std::make_unique<MenuOfEntries>();
        while (row != std::end(kRows) && row->menu == title) {
            const MenuRow* first = row;
            const auto section = ObjectRef<GMenu>::adopt(g_menu_new());
            for (; row != std::end(kRows) && row->menu == title && row->section == first->section; ++row)
                entries->add(actions, section.get(), row->title, row->action);
            g_menu_append_section(menu.get(), nullptr, G_MENU_MODEL(section.get()));
        }
        g_menu_append_submenu(bar, title, G_MENU_MODEL(menu.get()));
        menus->add(title, std::move(entries));
    }
    return menus;
}

void installShortcuts(GtkApplication* application) {
    for (const MenuRow& row : kRows) {
        if (row.shortcut == nullptr)
            continue;
        const std::array<const char*, 2> shortcuts = {row.shortcut, nullptr};
        gtk_application_set_accels_for_action(application, row.action, shortcuts.data());
    }
}

} // namespace

std::unique_ptr<Menu> installMenuBar(GtkApplication* application, MenuCommands commands) {
    addAction(G_ACTION_MAP(application), "quit", std::move(commands.quit));
    addAction(G_ACTION_MAP(application), "open-log-folder", std::move(commands.openLogFolder));
    const auto bar = ObjectRef<GMenu>::adopt(g_menu_new());
    auto menus = buildMenuBar(G_ACTION_MAP(application), bar.get());
    gtk_application_set_menubar(application, G_MENU_MODEL(bar.get()));
    installShortcuts(application);
    return menus;
}

void installWindowActions(GtkApplicationWindow* window, WebKitWebView* view) {
    GActionMap* map = G_ACTION_MAP(window);
    for (const EditingRow& row : kEditing)
        addAction(map, row.action,
                  [view, command = row.command] { webkit_web_view_execute_editing_command(view, command); });
    addAction(map, "reload", [view] { webkit_web_view_reload(view); });
    addAction(map, "zoom-in", [view] { zoom(view, zoomedIn); });
    addAction(map, "zoom-out", [view] { zoom(view, zoomedOut); });
    addAction(map, "zoom-reset", [view] { webkit_web_view_set_zoom_level(view, 1); });
    addAction(map, "minimise", [window] { gtk_window_minimize(GTK_WINDOW(window)); });
    addAction(map, "close-window", [window] { gtk_window_close(GTK_WINDOW(window)); });
}

bool menuIsOpen(GtkWidget* window) {
    for (GtkWidget* child = gtk_widget_get_first_child(window); child != nullptr;
         child = gtk_widget_get_next_sibling(child)) {
        if (GTK_IS_POPOVER(child)) {
            if (gtk_widget_get_mapped(child) != FALSE)
                return true;
        } else if (menuIsOpen(child)) {
            return true;
        }
    }
    return false;
}

} // namespace lumora::platform::linux_backend
