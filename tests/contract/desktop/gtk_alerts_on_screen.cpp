#include "gtk_alerts_on_screen.h"

namespace lumora::contract {

namespace {

using Texts = std::vector<std::string>;

/// Every widget below one that satisfies the predicate, depth first.
template <class Predicate>
void collect(GtkWidget* widget, Predicate wanted, std::vector<GtkWidget*>& found) {
    if (wanted(widget))
        found.push_back(widget);
    for (GtkWidget* child = gtk_widget_get_first_child(widget); child != nullptr;
         child = gtk_widget_get_next_sibling(child))
        collect(child, wanted, found);
}

} // namespace

GtkDialog* GtkAlertsOnScreen::dialog() {
    GListModel* windows = gtk_window_get_toplevels();
    for (guint i = 0; i < g_list_model_get_n_items(windows); ++i) {
        g_autoptr(GObject) window = G_OBJECT(g_list_model_get_item(windows, i));
        if (GTK_IS_DIALOG(window) && gtk_widget_get_mapped(GTK_WIDGET(window)) != FALSE)
            return GTK_DIALOG(window);
    }
    return nullptr;
}

std::vector<GtkWidget*> GtkAlertsOnScreen::buttonWidgets() {
    GtkDialog* shown = dialog();
    const auto answers = [shown](GtkWidget* widget) {
        return GTK_IS_BUTTON(widget) &&
               gtk_dialog_get_response_for_widget(shown, widget) != GTK_RESPONSE_NONE;
    };
    std::vector<GtkWidget*> found;
    collect(GTK_WIDGET(shown), answers, found);
    return found;
}

Texts GtkAlertsOnScreen::texts() {
    const auto isLabel = [](GtkWidget* widget) { return GTK_IS_LABEL(widget) != FALSE; };
    std::vector<GtkWidget*> labels;
    collect(gtk_message_dialog_get_message_area(GTK_MESSAGE_DIALOG(dialog())), isLabel, labels);
    Texts texts;
    for (GtkWidget* label : labels)
        texts.emplace_back(gtk_label_get_text(GTK_LABEL(label)));
    return texts;
}

Texts GtkAlertsOnScreen::buttons() {
    Texts titles;
    for (GtkWidget* button : buttonWidgets())
        titles.emplace_back(gtk_button_get_label(GTK_BUTTON(button)));
    return titles;
}

void GtkAlertsOnScreen::press(const std::string& title) {
    for (GtkWidget* button : buttonWidgets())
        if (gtk_button_get_label(GTK_BUTTON(button)) == title)
            g_signal_emit_by_name(button, "clicked");
}

} // namespace lumora::contract
