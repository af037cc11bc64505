#pragma once

#include "desktop.h"
#include "platform/linux/gui/glib_main_loop.h"
#include "platform/linux/gui/gtk_alerts.h"

#include <gtk/gtk.h>

namespace lumora::contract {

/// Alerts as GTK's dialogs.
class GtkAlertsOnScreen final : public AlertsOnScreen {
  public:
    platform::Alerts& alerts() override { return alerts_; }
    bool isOneThere() override { return dialog() != nullptr; }
    bool isModal() override { return gtk_window_get_modal(GTK_WINDOW(dialog())) != FALSE; }
    std::vector<std::string> texts() override;
    std::vector<std::string> buttons() override;
    void press(const std::string& title) override;
    void dismiss() override { gtk_window_close(GTK_WINDOW(dialog())); }

    [[nodiscard]] platform::linux_backend::EventTracking& tracking() { return loop_.tracking(); }

    /// From left to right.
    [[nodiscard]] static std::vector<GtkWidget*> buttonWidgets();

  private:
    /// The one on the screen, or null.
    static GtkDialog* dialog();

    platform::linux_backend::GlibMainLoop loop_;
    platform::linux_backend::GtkAlerts alerts_{loop_.tracking(), [] { return nullptr; }};
};

} // namespace lumora::contract
