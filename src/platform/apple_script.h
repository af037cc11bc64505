#pragma once

#include "platform/result.h"

#include <string>

namespace lumora::platform {

/// Compiles and runs AppleScript source. Main thread; blocks until the script ends. Always an error on systems
/// without AppleScript.
class AppleScripts {
  public:
    virtual ~AppleScripts() = default;
    virtual Result<void> run(const std::string& source) = 0;
};

} // namespace lumora::platform
