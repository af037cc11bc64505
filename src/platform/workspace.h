#pragma once

#include "platform/result.h"

#include <string>
#include <vector>

namespace lumora::platform {

/// What the desktop does for an application. Callable from any thread.
class Workspace {
  public:
    virtual ~Workspace() = default;

    /// Opens an address in the application registered for its scheme; false when that fails.
    virtual bool openUrl(const std::string& url) = 0;

    /// Starts the application bundle at the path, detached, without waiting for it to end.
    virtual Result<void> launchApplication(const std::string& bundlePath,
                                           const std::vector<std::string>& arguments) = 0;
};

} // namespace lumora::platform
