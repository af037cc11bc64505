#include "shell/uninstall_texts.h"

#include "platform/file_manager.h"
#include "platform/ports.h"
#include "support/characters.h"

#include <fmt/format.h>

namespace lumora {

namespace {

using platform::Alert;
using platform::AlertStyle;

constexpr const char* kBundleInApplications = "/Applications/Ovra Tessel Lumora.app";
constexpr std::string_view kNotInstalled = "Ovra Tessel Lumora is not installed on this Mac.";
constexpr std::string_view kUnknownError = "An unknown error occurred while starting uninstallation.";

/// The script's own words when it has nothing to remove, and the mark of its banners.
constexpr std::string_view kNothingFound = "No installation found";
constexpr std::string_view kBanner = "=====";

std::string_view levelText(InstallLevel level) {
    return level == InstallLevel::systemWide ? "system-wide (all users)" : "current user only";
}

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

bool isDecoration(std::string_view line) { return contains(line, kBanner) || trimmed(line).empty(); }

/// The lines that tell something, as they stand. A carriage return ends a line too: that is how AppleScript hands on
/// a command's line feeds.
std::string withoutDecoration(std::string_view message) {
    std::string kept;
    while (true) {
        const auto end = message.find_first_of("\r\n");
        const auto line = message.substr(0, end);
        if (!isDecoration(line))
            kept += fmt::format("{}{}", kept.empty() ? "" : "\n", line);
        if (end == std::string_view::npos)
            return kept;
        message.remove_prefix(end + 1);
    }
}

std::string failureDetails(std::string_view message) {
    if (contains(message, kNothingFound))
        return std::string(kNotInstalled);
    if (message.empty())
        return std::string(kUnknownError);
    return withoutDecoration(message);
}

} // namespace

std::string installLocation(InstallLevel level) {
    if (level == InstallLevel::systemWide)
        return kBundleInApplications;
    return platform::ports().fileManager->homeDirectory() + kBundleInApplications;
}

std::string temporaryScriptPath(std::int64_t processIdentifier) {
    return fmt::format("/tmp/ovra_uninstall_{}.sh", processIdentifier);
}

std::string uninstallSource(std::string_view scriptPath, InstallLevel level) {
    return fmt::format(R"(do shell script "/bin/bash " & quoted form of "{}" & " --skip-kill 2>&1"{})",
                       scriptPath, level == InstallLevel::systemWide ? " with administrator privileges" : "");
}

Alert noInstallationFound() {
    return {"No Installation Found",
            fmt::format("{}\n\nChecked locations:\n• /Applications/\n• ~/Applications/", kNotInstalled),
            AlertStyle::informational,
            {"OK"}};
}

Alert confirmation(InstallLevel level) {
    return {"Uninstall Ovra Tessel Lumora",
            fmt::format(
                "This will completely remove Ovra Tessel Lumora from this Mac, including all preferences and "
                "support files.\n\nInstall location: {}\nInstall level: {}\n\nThis action cannot be undone.",
                installLocation(level), levelText(level)),
            AlertStyle::critical,
            {"Uninstall", "Cancel"}};
}

Alert scriptMissing() {
    return {"Uninstall Error",
            "The uninstall script was not found inside the application bundle. The app may be corrupted.\n\n"
            "Please reinstall or manually delete the app.",
            AlertStyle::warning,
            {}};
}

Alert scriptNotPrepared(std::string_view reason) {
    return {"Uninstall Error",
            fmt::format("Failed to prepare the uninstall script.\n\nDetails: {}", reason),
            AlertStyle::warning,
            {}};
}

Alert uninstallComplete() {
    return {"Uninstall Complete",
            "Ovra Tessel Lumora has been successfully removed from this Mac.",
            AlertStyle::informational,
            {"OK"}};
}

Alert uninstallFailed(std::string_view message, std::string_view scriptPath) {
    return {"Uninstall Failed",
            fmt::format("{}\n\nYou can run this manually for diagnostics:\n/bin/bash {} --skip-kill",
                        failureDetails(message), scriptPath),
            AlertStyle::warning,
            {}};
}

} // namespace lumora
