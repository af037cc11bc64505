#include "platform/linux/gui/keyboard_focus.h"

namespace lumora::platform::linux_backend {

// The engine keeps an unseen text field in the view, which tells it what the desktop's editing keys mean. Tab after the
// page's last element would move the focus there, and a text field takes every further Tab for text.
void keepFocusOffHiddenParts(WebKitWebView* view) {
    for (GtkWidget* part = gtk_widget_get_first_child(GTK_WIDGET(view)); part != nullptr;
         part = gtk_widget_get_next_sibling(part))
        gtk_widget_set_can_focus(part, FALSE);
}

} // namespace lumora::platform::linux_backend
