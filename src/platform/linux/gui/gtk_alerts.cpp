#include "platform/linux/gui/gtk_alerts.h"

#include "platform/linux/glib_handles.h"
#include "platform/linux/gui/modal_loop.h"

namespace lumora::platform::linux_backend {

namespace {

constexpr const char* kOnlyButton = "OK";

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
    const auto dialog = ObjectRef<GtkWidget>::retain(gtk_message_dialog_new(
        parent_(), GTK_DIALOG_MODAL, typeOf(alert.style), GTK_BUTTONS_NONE, "%s", alert.messageText.c_str()));
    auto* message = GTK_MESSAGE_DIALOG(dialog.get());
    gtk_message_dialog_format_secondary_text(message, "%s", alert.informativeText.c_str());
    makeTextsSelectable(gtk_message_dialog_get_message_area(message));
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
