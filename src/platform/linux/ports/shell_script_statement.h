#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumora::platform::linux_backend {

/// The one statement of AppleScript that means the same on every Unix:
///   do shell script TERM & TERM ... [with administrator privileges]
/// A term is a string literal, or "quoted form of" one.
struct ShellScriptStatement {
    std::string command; ///< for /bin/sh
    bool administratorPrivileges = false;

    bool operator==(const ShellScriptStatement&) const = default;
};

/// Empty when the source is anything else.
[[nodiscard]] std::optional<ShellScriptStatement> parseShellScriptStatement(std::string_view source);

} // namespace lumora::platform::linux_backend
