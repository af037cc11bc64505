#pragma once

#include "platform/alerts.h"
#include "platform/linux/gui/event_tracking.h"

#include <gtk/gtk.h>

namespace lumora::platform::linux_backend {

/// Alerts as modal dialogs over the application's window.
class GtkAlerts final : public Alerts {
  public:
    /// @param parent  the window to stand over; null while there is none
    GtkAlerts(EventTracking& tracking, std::function<GtkWindow*()> parent)
        : tracking_(tracking), parent_(std::move(parent)) {}

    [[nodiscard]] int runModal(const Alert& alert) override;

  private:
    EventTracking& tracking_;
    const std::function<GtkWindow*()> parent_;
};

} // namespace lumora::platform::linux_backend
