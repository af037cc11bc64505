#pragma once

#include <memory>
#include <optional>
#include <string>

namespace lumora::platform {

/// What a script that failed left behind.
struct AppleScriptError {
    int number = 0;                     ///< the system's error number; a shell command's exit status
    std::optional<std::string> message; ///< absent when there is none, or none that is a string

    bool operator==(const AppleScriptError&) const = default;
};

/// One compiled script. Main thread.
class AppleScript {
  public:
    virtual ~AppleScript() = default;

    /// Runs the script and blocks until it ends; the error information, absent after a success.
    [[nodiscard]] virtual std::optional<AppleScriptError> execute() = 0;
};

/// Makes scripts from AppleScript source. Main thread.
class AppleScripts {
  public:
    virtual ~AppleScripts() = default;

    /// Null when no script can be made of the source on this system.
    [[nodiscard]] virtual std::unique_ptr<AppleScript> makeScript(const std::string& source) = 0;
};

} // namespace lumora::platform
