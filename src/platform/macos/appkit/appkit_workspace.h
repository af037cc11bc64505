#pragma once

#include "platform/workspace.h"

namespace lumora::platform::macos_backend {

/// `NSWorkspace`.
class AppKitWorkspace final : public Workspace {
  public:
    bool openUrl(const std::string& url) override;
    Result<void> launchApplication(const std::string& bundlePath,
                                   const std::vector<std::string>& arguments) override;
};

} // namespace lumora::platform::macos_backend
