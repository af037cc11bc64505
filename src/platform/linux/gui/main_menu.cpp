#include "platform/linux/gui/main_menu.h"

#include "platform/linux/glib_handles.h"
#include "platform/linux/gui/menu_entries.h"
#include "webhost/page_zoom.h"

#include <array>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace lumora::platform::linux_backend {

namespace {

/// What does a command of the menu bar here; nothing, until its entry gets a target.
const std::map<std::string, const char*> kCommands = {
    {"uninstallApp:", nullptr},
    {"terminate:", "app.quit"},
    {"undo:", "win.undo"},
    {"redo:", "win.redo"},
    {"cut:", "win.cut"},
    {"copy:", "win.copy"},
    {"paste:", "win.paste"},
    {"selectAll:", "win.select-all"},
    {"reload:", "win.reload"},
    {"actualSize:", "win.zoom-reset"},
    {"zoomIn:", "win.zoom-in"},
    {"zoomOut:", "win.zoom-out"},
    {"performMiniaturize:", "win.minimise"},
    {"performClose:", "win.close-window"},
    {"openLogFolder:", "app.open-log-folder"},
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

/// The key's name for the toolkit.
std::string shortcutOf(const MenuRow& row) {
    const std::string key = row.key;
    if (key == "+")
        return "<Control>plus";
    if (key == "-")
        return "<Control>minus";
    const char lower = g_ascii_tolower(key.front());
    return std::string(lower == key.front() ? "<Control>" : "<Shift><Control>") + lower;
}

/// Entries between two separators are a section.
void showMenu(GtkApplication* application, GMenu* menu, const MenuHeading& heading) {
    auto section = ObjectRef<GMenu>::adopt(g_menu_new());
    g_menu_append_section(menu, nullptr, G_MENU_MODEL(section.get()));
    for (const auto& entry : heading.entries) {
        if (entry->isSeparator()) {
            section = ObjectRef<GMenu>::adopt(g_menu_new());
            g_menu_append_section(menu, nullptr, G_MENU_MODEL(section.get()));
            continue;
        }
        const char* command = kCommands.at(entry->row.action);
        const auto shown =
            std::make_shared<ShownEntry>(G_ACTION_MAP(application), section.get(), *entry, command);
        entry->changed = [shown] { shown->update(); };
        if (command == nullptr || *entry->row.key == 0)
            continue;
        const std::string shortcut = shortcutOf(entry->row);
        const std::array<const char*, 2> shortcuts = {shortcut.c_str(), nullptr};
        gtk_application_set_accels_for_action(application, command, shortcuts.data());
    }
}

} // namespace

std::unique_ptr<Menu> installMenuBar(GtkApplication* application, MenuCommands commands) {
    addAction(G_ACTION_MAP(application), "quit", std::move(commands.quit));
    addAction(G_ACTION_MAP(application), "open-log-folder", std::move(commands.openLogFolder));
    auto menus = std::make_unique<MainMenu>(
        [](const std::string& action) { return kCommands.find(action) != kCommands.end(); });
    const auto bar = ObjectRef<GMenu>::adopt(g_menu_new());
    for (const auto& heading : menus->headings) {
        const auto menu = ObjectRef<GMenu>::adopt(g_menu_new());
        showMenu(application, menu.get(), *heading);
        g_menu_append_submenu(bar.get(), heading->markedTitle.c_str(), G_MENU_MODEL(menu.get()));
    }
    gtk_application_set_menubar(application, G_MENU_MODEL(bar.get()));
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
