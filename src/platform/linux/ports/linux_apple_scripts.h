#pragma once

#include "platform/apple_script.h"
#include "platform/linux/ports/linux_task_runner.h"

#include <functional>

namespace lumora::platform::linux_backend {

/// Runs the AppleScript that a system without AppleScript can: shell scripts, an administrator's through polkit.
/// No script can be made of any other source.
class LinuxAppleScripts final : public AppleScripts {
  public:
    /// Does the work on another thread and comes back when it is done (true), or when the application is to end
    /// before that (false); the work then goes on without anyone waiting for it.
    using Wait = std::function<bool(std::function<void()> work)>;

    /// @param environment  what the scripts get
    LinuxAppleScripts(Environment environment, Wait wait);

    [[nodiscard]] std::unique_ptr<AppleScript> makeScript(const std::string& source) override;

  private:
    const Environment environment_;
    const Wait wait_;
};

} // namespace lumora::platform::linux_backend
