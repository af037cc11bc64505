#pragma once

#include "platform/apple_script.h"

namespace lumora::platform::linux_backend {

/// AppleScripts where there is no AppleScript: every run is an error.
class NoAppleScripts final : public AppleScripts {
  public:
    Result<void> run(const std::string& source) override;
};

} // namespace lumora::platform::linux_backend
