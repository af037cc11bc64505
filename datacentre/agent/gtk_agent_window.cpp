#include "agent/agent_window.h"
#include "agent/session_texts.h"

#include <gtk/gtk.h>

#include <string>

namespace datacentre::agent {

namespace {

constexpr int kWidth = 420;

constexpr const char* kStyle = R"(
window.agent { background: #f6f8f8; color: #17222b; }
.agent .card { background: #ffffff; border: 1px solid #d9e0e4; border-radius: 12px; padding: 16px 18px; }
.agent .title { font-size: 15pt; font-weight: bold; }
.agent .key { font-feature-settings: "tnum"; }
.agent .state { color: #17693d; font-weight: bold; }
.agent .state.missing { color: #a8231c; }
.agent .name { color: #51606c; }
.agent button.end { background: #0b6470; color: #ffffff; border: none; padding: 9px 18px; border-radius: 9px; font-weight: bold; }
)";

GtkWidget* label(const std::string& text, const char* cssClass) {
    // Whatever the file holds, the label gets text that it can show.
    char* const valid = g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()));
    GtkWidget* const widget = gtk_label_new(valid);
    gtk_widget_add_css_class(widget, cssClass);
    gtk_label_set_xalign(GTK_LABEL(widget), 0);
    // A long value must not widen the window; wrapped labels would make it far too high instead.
    gtk_label_set_ellipsize(GTK_LABEL(widget), PANGO_ELLIPSIZE_MIDDLE);
    gtk_widget_set_tooltip_text(widget, valid);
    g_free(valid);
    return widget;
}

GtkWidget* detailsGrid(const JoinDetails& details) {
    GtkWidget* const grid = gtk_grid_new();
    gtk_widget_add_css_class(grid, "card");
    gtk_grid_set_column_spacing(GTK_GRID(grid), 18);
    gtk_grid_set_row_spacing(GTK_GRID(grid), 8);
    int line = 0;
    for (const auto& [name, value] : detailRows(details)) {
        GtkWidget* const nameLabel = label(name, "name");
        gtk_label_set_ellipsize(GTK_LABEL(nameLabel), PANGO_ELLIPSIZE_NONE);
        gtk_grid_attach(GTK_GRID(grid), nameLabel, 0, line, 1, 1);
        gtk_grid_attach(GTK_GRID(grid), label(value, "value"), 1, line, 1, 1);
        ++line;
    }
    return grid;
}

GtkWidget* content(const JoinDetails& details, GtkWidget* window) {
    GtkWidget* const box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 14);
    gtk_widget_set_margin_top(box, 22);
    gtk_widget_set_margin_bottom(box, 20);
    gtk_widget_set_margin_start(box, 24);
    gtk_widget_set_margin_end(box, 24);

    GtkWidget* const title = label(heading(details), "title");
    gtk_widget_add_css_class(title, "key");
    gtk_box_append(GTK_BOX(box), title);
    GtkWidget* const state = label(stateText(details), "state");
    if (!details.wellFormed)
        gtk_widget_add_css_class(state, "missing");
    gtk_box_append(GTK_BOX(box), state);
    if (details.present)
        gtk_box_append(GTK_BOX(box), detailsGrid(details));

    GtkWidget* const end = gtk_button_new_with_mnemonic((std::string("_") + kEndSession).c_str());
    gtk_widget_add_css_class(end, "end");
    gtk_widget_set_halign(end, GTK_ALIGN_END);
    g_signal_connect_swapped(end, "clicked", G_CALLBACK(gtk_window_close), window);
    gtk_box_append(GTK_BOX(box), end);
    return box;
}

void closeOnEscape(GtkWidget* window) {
    GtkEventController* const controller = gtk_shortcut_controller_new();
    gtk_shortcut_controller_add_shortcut(
        GTK_SHORTCUT_CONTROLLER(controller),
        gtk_shortcut_new(gtk_keyval_trigger_new(GDK_KEY_Escape, static_cast<GdkModifierType>(0)),
                         gtk_named_action_new("window.close")));
    gtk_widget_add_controller(window, controller);
}

void useStyle() {
    GtkCssProvider* const provider = gtk_css_provider_new();
    gtk_css_provider_load_from_data(provider, kStyle, -1);
    gtk_style_context_add_provider_for_display(gdk_display_get_default(), GTK_STYLE_PROVIDER(provider),
                                               GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    g_object_unref(provider);
}

} // namespace

void showAgentWindow(const JoinDetails& details) {
    // Takes no arguments: "-timestamps" is the agent's own and no option of the toolkit.
    if (gtk_init_check() == FALSE)
        return;
    useStyle();
    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
    GtkWidget* const window = gtk_window_new();
    char* const title = g_utf8_make_valid(windowTitle(details).c_str(), -1);
    gtk_window_set_title(GTK_WINDOW(window), title);
    g_free(title);
    gtk_window_set_default_size(GTK_WINDOW(window), kWidth, -1);
    gtk_window_set_resizable(GTK_WINDOW(window), FALSE);
    gtk_widget_add_css_class(window, "agent");
    gtk_window_set_child(GTK_WINDOW(window), content(details, window));
    closeOnEscape(window);
    g_signal_connect_swapped(window, "destroy", G_CALLBACK(g_main_loop_quit), loop);
    gtk_window_present(GTK_WINDOW(window));
    g_main_loop_run(loop);
    g_main_loop_unref(loop);
}

void standWithoutWindow() {} // nobody waits

} // namespace datacentre::agent
