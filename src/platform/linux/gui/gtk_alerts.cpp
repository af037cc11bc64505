#include "platform/linux/gui/gtk_alerts.h"

#include "platform/linux/glib_handles.h"
#include "platform/linux/gui/modal_loop.h"

namespace lumora::platform::linux_backend {

namespace {

constexpr const char* kOnlyButton = "OK";
constexpr int kTopMargin = 20; ///< pixels: under a window manager's own title bar the text would touch it

GtkMessageType typeOf(AlertStyle style) {
    switch (style) {
    case AlertStyle::warning:
        return GTK_MESSAGE_WARNING;
    case AlertStyle::informational:
        return GTK_MESSAGE_INFO;
    case AlertStyle::critical:
        return GTK_MESSAGE_ERROR;
    }
    return GTK_MESSAGE_OTHER;
}

/// The window's title and the accessible texts are what task bars and screen readers tell of it.
ObjectRef<GtkWidget> makeDialog(const Alert& alert, GtkWindow* parent) {
    auto dialog = ObjectRef<GtkWidget>::retain(GTK_WIDGET(
        g_object_new(GTK_TYPE_MESSAGE_DIALOG, "accessible-role", GTK_ACCESSIBLE_ROLE_ALERT_DIALOG,
                     "message-type", typeOf(alert.style), "buttons", GTK_BUTTONS_NONE, "text",
                     alert.messageText.c_str(), "secondary-text", alert.informativeText.c_str(), "modal",
                     TRUE, "transient-for", parent, "title", g_get_application_name(), nullptr)));
    gtk_accessible_update_property(GTK_ACCESSIBLE(dialog.get()), GTK_ACCESSIBLE_PROPERTY_LABEL,
                                   alert.messageText.c_str(), GTK_ACCESSIBLE_PROPERTY_DESCRIPTION,
                                   alert.informativeText.c_str(), -1);
    return dialog;
}

/// From the last to the first: the default button stands on the right, as on the platform's own dialogs.
/// @return the first button
GtkWidget* addButtons(GtkDialog* dialog, const Alert& alert) {
    if (alert.buttons.empty())
        return gtk_dialog_add_button(dialog, kOnlyButton, kAlertFirstButtonReturn);
    GtkWidget* first = nullptr;
    for (std::size_t i = alert.buttons.size(); i-- > 0;)
        first = gtk_dialog_add_button(dialog, alert.buttons[i].c_str(),
                                      kAlertFirstButtonReturn + static_cast<int>(i));
    if (alert.style == AlertStyle::critical)
        gtk_widget_add_css_class(first, "destructive-action");
    return first;
}

/// So that a command that the text names can be copied.
void makeTextsSelectable(GtkWidget* messageArea) {
    for (GtkWidget* child = gtk_widget_get_first_child(messageArea); child != nullptr;
         child = gtk_widget_get_next_sibling(child))
        if (GTK_IS_LABEL(child))
            gtk_label_set_selectable(GTK_LABEL(child), TRUE);
}

struct Answer {
    explicit Answer(EventTracking& tracking) : loop(tracking) {}
    ModalLoop loop;
    int response = GTK_RESPONSE_NONE;
};

void answered(GtkDialog*, int response, gpointer data) {
    auto& answer = *static_cast<Answer*>(data);
    answer.response = response;
    answer.loop.quit();
}

} // namespace

int GtkAlerts::runModal(const Alert& alert) {
    const auto dialog = makeDialog(alert, parent_());
    GtkWidget* messageArea = gtk_message_dialog_get_message_area(GTK_MESSAGE_DIALOG(dialog.get()));
    gtk_widget_set_margin_top(messageArea, kTopMargin);
    makeTextsSelectable(messageArea);
    GtkWidget* first = addButtons(GTK_DIALOG(dialog.get()), alert);
    gtk_dialog_set_default_response(GTK_DIALOG(dialog.get()), kAlertFirstButtonReturn);
    gtk_widget_grab_focus(first); // not the text, which would stand all selected

    Answer answer(tracking_);
    {
        SignalConnections signals(dialog.get());
        signals.connect("response", &answered, &answer);
        gtk_window_present(GTK_WINDOW(dialog.get()));
        answer.loop.run();
    }
    gtk_window_destroy(GTK_WINDOW(dialog.get()));
    return answer.response;
}

} // namespace lumora::platform::linux_backend
