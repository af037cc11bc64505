#pragma once

#include "platform/system_version.h"

namespace lumora::platform::macos_backend {

/// The system version file.
class FoundationSystemVersions final : public SystemVersions {
  public:
    SystemVersion current() override;
};

} // namespace lumora::platform::macos_backend
