#include "gtk_menu_bar_on_screen.h"

#include "platform/linux/gui/main_menu.h"

namespace lumora::contract {

namespace backend = platform::linux_backend;

namespace {

constexpr std::string_view kOfTheApplication = "app.";

/// Two applications of one process cannot be registered under one name.
std::string freshIdentifier() {
    static int made = 0;
    return "com.ovra.tessel.TestsWithMenu" + std::to_string(++made);
}

/// The visible part of a model, depth first.
void collect(GMenuModel* model, std::vector<MenuBarOnScreen::Row>& rows) {
    for (int i = 0; i < g_menu_model_get_n_items(model); ++i) {
        g_autofree char* label = nullptr;
        g_autofree char* action = nullptr;
        g_menu_model_get_item_attribute(model, i, G_MENU_ATTRIBUTE_LABEL, "s", &label);
        g_menu_model_get_item_attribute(model, i, G_MENU_ATTRIBUTE_ACTION, "s", &action);
        if (label != nullptr) {
            std::string title = label;
            std::erase(title, '_'); // the mark of the keyboard's letter
            rows.push_back({title, backend::textOf(action)});
        }
        for (const char* link : {G_MENU_LINK_SECTION, G_MENU_LINK_SUBMENU}) {
            g_autoptr(GMenuModel) linked = g_menu_model_get_item_link(model, i, link);
            if (linked != nullptr)
                collect(linked, rows);
        }
    }
}

} // namespace

GtkMenuBarOnScreen::GtkMenuBarOnScreen()
    : application_(backend::ObjectRef<GtkApplication>::adopt(
          gtk_application_new(freshIdentifier().c_str(), G_APPLICATION_NON_UNIQUE))) {
    g_application_register(G_APPLICATION(application_.get()), nullptr, nullptr);
    menu_ = backend::installMenuBar(application_.get(), {[this] { ++quits; }, [this] { ++logFolders; }});
}

std::vector<MenuBarOnScreen::Row> GtkMenuBarOnScreen::rows() {
    std::vector<Row> rows;
    collect(gtk_application_get_menubar(application_.get()), rows);
    return rows;
}

bool GtkMenuBarOnScreen::choose(const std::string& title) {
    auto* group = G_ACTION_GROUP(application_.get());
    for (const Row& row : rows()) {
        if (row.title != title || !row.action.starts_with(kOfTheApplication))
            continue;
        const std::string action = row.action.substr(kOfTheApplication.size());
        if (g_action_group_has_action(group, action.c_str()) == FALSE ||
            g_action_group_get_action_enabled(group, action.c_str()) == FALSE)
            return false;
        g_action_group_activate_action(group, action.c_str(), nullptr);
        return true;
    }
    return false;
}

} // namespace lumora::contract
