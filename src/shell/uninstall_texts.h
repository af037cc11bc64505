#pragma once

#include "platform/alerts.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace lumora {

/// For whom the application is installed.
enum class InstallLevel { systemWide, currentUser };

/// Where the bundle of that installation lies.
[[nodiscard]] std::string installLocation(InstallLevel level);

/// Where the process puts the copy of the uninstall script that it runs.
[[nodiscard]] std::string temporaryScriptPath(std::int64_t processIdentifier);

/// AppleScript source that runs the script at the path, with an administrator's rights for a system-wide installation.
[[nodiscard]] std::string uninstallSource(std::string_view scriptPath, InstallLevel level);

// --- the command's alerts, in the order in which a run can meet them ------------------------------------------------

[[nodiscard]] platform::Alert noInstallationFound();
[[nodiscard]] platform::Alert confirmation(InstallLevel level);
[[nodiscard]] platform::Alert scriptMissing();
[[nodiscard]] platform::Alert scriptNotPrepared(std::string_view reason);
[[nodiscard]] platform::Alert uninstallComplete();

/// @param message what the script wrote; empty when it wrote nothing.
[[nodiscard]] platform::Alert uninstallFailed(std::string_view message, std::string_view scriptPath);

} // namespace lumora
