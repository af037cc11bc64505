#pragma once

#include "platform/alerts.h"

namespace lumora::platform::macos_backend {

/// `NSAlert`.
class AppKitAlerts final : public Alerts {
  public:
    [[nodiscard]] int runModal(const Alert& alert) override;
};

} // namespace lumora::platform::macos_backend
