#pragma once

#include "platform/apple_script.h"

namespace lumora::platform::macos_backend {

/// `NSAppleScript`.
class FoundationAppleScripts final : public AppleScripts {
  public:
    [[nodiscard]] std::unique_ptr<AppleScript> makeScript(const std::string& source) override;
};

} // namespace lumora::platform::macos_backend
