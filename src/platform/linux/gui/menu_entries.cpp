#include "platform/linux/gui/menu_entries.h"

#include <fmt/format.h>

#include <utility>

namespace lumora::platform::linux_backend {

namespace {

using Command = std::function<void()>;

void runCommand(GSimpleAction*, GVariant*, gpointer command) { (*static_cast<Command*>(command))(); }

void deleteCommand(gpointer command, GClosure*) { delete static_cast<Command*>(command); }

} // namespace

GSimpleAction* addAction(GActionMap* map, const char* name, std::function<void()> command) {
    const auto action = ObjectRef<GSimpleAction>::adopt(g_simple_action_new(name, nullptr));
    g_signal_connect_data(action.get(), "activate", G_CALLBACK(runCommand), new Command(std::move(command)),
                          deleteCommand, GConnectFlags{});
    g_action_map_add_action(map, G_ACTION(action.get()));
    return action.get();
}

ShownEntry::ShownEntry(GActionMap* actions, GMenu* section, MenuEntry& entry, const char* command)
    : actions_(actions), section_(ObjectRef<GMenu>::retain(section)),
      position_(g_menu_model_get_n_items(G_MENU_MODEL(section))), entry_(entry) {
    g_menu_append(section, entry.row.title, command);
}

void ShownEntry::takeOver() {
    ownAction_ = fmt::format("entry-{}", fmt::ptr(this));
    const auto item = ObjectRef<GMenuItem>::adopt(
        g_menu_item_new(entry_.row.title, fmt::format("app.{}", ownAction_).c_str()));
    g_menu_item_set_attribute(item.get(), "hidden-when", "s", "action-missing");
    g_menu_remove(section_.get(), position_);
    g_menu_insert_item(section_.get(), position_, item.get());
}

void ShownEntry::update() {
    if (!entry_.hasTarget())
        return;
    if (ownAction_.empty())
        takeOver();
    if (entry_.isHidden()) {
        g_action_map_remove_action(actions_, ownAction_.c_str());
        return;
    }
    GAction* action = g_action_map_lookup_action(actions_, ownAction_.c_str());
    if (action == nullptr)
        action = G_ACTION(addAction(actions_, ownAction_.c_str(), [this] { entry_.choose(); }));
    g_simple_action_set_enabled(G_SIMPLE_ACTION(action), entry_.isEnabled() ? TRUE : FALSE);
}

} // namespace lumora::platform::linux_backend
