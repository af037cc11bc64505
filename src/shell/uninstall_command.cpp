#include "platform/alerts.h"
#include "platform/apple_script.h"
#include "platform/application.h"
#include "platform/bundle.h"
#include "platform/file_manager.h"
#include "platform/ports.h"
#include "platform/process_info.h"
#include "shell/app_delegate.h"
#include "shell/uninstall_texts.h"

namespace lumora {

namespace {

using platform::ports;

constexpr int kUserCancelled = -128; // errAEUserCanceled, of a dismissed administrator prompt

constexpr const char* kScriptName = "uninstall_lumora";
constexpr const char* kScriptType = "sh";

/// The installation that the command removes: the system-wide one wins.
std::optional<InstallLevel> installedLevel() {
    for (const auto level : {InstallLevel::systemWide, InstallLevel::currentUser}) {
        if (ports().fileManager->fileExists(installLocation(level)))
            return level;
    }
    return std::nullopt;
}

/// A fresh copy of the script at the path, or what prevented it. Whatever stood there is removed, never written to.
platform::Result<void> placeScript(const std::string& script, const std::string& path) {
    auto& files = *ports().fileManager;
    if (files.fileExists(path)) {
        if (auto removed = files.removeItem(path); !removed)
            return removed;
    }
    return files.copyItem(script, path);
}

void tell(const platform::Alert& alert) { static_cast<void>(ports().alerts->runModal(alert)); }

} // namespace

void AppDelegate::uninstallApp() {
    const auto level = installedLevel();
    if (!level) {
        tell(noInstallationFound());
        return;
    }
    if (ports().alerts->runModal(confirmation(*level)) != platform::kAlertFirstButtonReturn)
        return;

    const auto resource = ports().bundles->pathForResource(kScriptName, kScriptType);
    if (!resource) {
        tell(scriptMissing());
        return;
    }
    const std::string path = temporaryScriptPath(ports().processInfo->processIdentifier());
    if (const auto placed = placeScript(*resource, path); !placed) {
        tell(scriptNotPrepared(placed.error().localizedDescription));
        return;
    }

    const auto script = ports().appleScripts->makeScript(uninstallSource(path, *level));
    if (!script)
        return;
    const auto error = script->execute();
    if (!error) {
        tell(uninstallComplete());
        ports().application->terminate();
    } else if (error->number != kUserCancelled) {
        tell(uninstallFailed(error->message.value_or(""), path));
    }
}

} // namespace lumora
