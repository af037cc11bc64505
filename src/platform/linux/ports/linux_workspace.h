#pragma once

#include "platform/bundle.h"
#include "platform/linux/ports/child_process.h"
#include "platform/linux/ports/home_folder.h"
#include "platform/workspace.h"

namespace lumora::platform::linux_backend {

/// The desktop's default handlers by GIO; applications as detached processes.
class LinuxWorkspace final : public Workspace {
  public:
    /// @param environment  what launched programs get, free of what the application set for its own window
    LinuxWorkspace(Bundles& bundles, HomeFolder home, Environment environment);

    bool openUrl(const std::string& url) override;
    Result<void> launchApplication(const std::string& bundlePath,
                                   const std::vector<std::string>& arguments) override;

  private:
    Bundles& bundles_;
    const HomeFolder home_;
    const Environment environment_;
};

} // namespace lumora::platform::linux_backend
