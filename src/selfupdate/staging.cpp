// From the downloaded image to the staged bundle: mount, copy, detach.

#include "config/session_details.h"
#include "platform/file_manager.h"
#include "platform/ports.h"
#include "selfupdate/ovra_lumora_updater.h"
#include "selfupdate/staged_bundle.h"
#include "support/characters.h"
#include "support/disk_images.h"
#include "support/exception_guard.h"
#include "support/json.h"
#include "support/log.h"
#include "support/paths.h"

namespace lumora {

namespace {

constexpr const char* kMount = "-[OvraLumoraUpdater mountingOvraLumoraDmg]";
constexpr const char* kCopy = "-[OvraLumoraUpdater copyAppFile]";
constexpr const char* kUnmount = "-[OvraLumoraUpdater unMountingOvraLumoraDmg]";

/// Fixed: the volume's name belongs to the image. The mount point that the tool reports serves the detach only.
constexpr const char* kBundleOnVolume = "/Volumes/Lumora Plugin/Ovra Tessel Lumora.app";

bool isUtf8(const std::string& text) { return serializeJson(Json(text)).has_value(); }

/// The last tab-separated field of the image tool's output; nothing when the output is no text.
std::optional<std::string> reportedMountPoint(const std::string& output) {
    if (!isUtf8(output))
        return std::nullopt;
    const auto text = trimmed(output);
    return std::string(text.substr(text.rfind('\t') + 1));
}

void removeStagedBundle(platform::FileManager& files, const std::string& folder) {
    const auto staged = folder + kLumoraBundleName;
    if (!files.fileExists(staged))
        return;
    if (files.removeItem(staged))
        log("{} : Existing Updated Ovra Lumora Removed in folder {}", kCopy, folder);
    else // says the opposite of what happened; the line is known so to those who read logs
        log("{} : No Existing Updated Ovra Lumora Present in folder {}", kCopy, folder);
}

void stageBundle(platform::FileManager& files, const std::string& folder) {
    const StagedBundleTurn turn;
    removeStagedBundle(files, folder);
    if (!files.copyItem(kBundleOnVolume, appendPathComponent(folder, kLumoraBundleName)))
        return;
    SessionDetails::getInstance().setIsAppReplaceFlag(true);
    log("{} : Ovra Tessel Lumora.app file copied to  OvraLumoraNative folder", kCopy);
}

} // namespace

void OvraLumoraUpdater::mountingOvraLumoraDmg() {
    try {
        const auto result = runImageTool({"mount", lumoraImagePath()}, platform::TaskOutput::capture);
        if (auto mountPoint = reportedMountPoint(result.standardOutput))
            latestLumoraDmgPath_ = std::move(mountPoint);
        copyAppFile();
    } catch (const std::exception& exception) {
        log("{} : Exception: {}", kMount, exception.what()); // this operation's own, shorter form
    }
}

void OvraLumoraUpdater::copyAppFile() {
    guarded(kCopy, [this] {
        auto& files = *platform::ports().fileManager;
        stageBundle(files, stagingFolder());
        unMountingOvraLumoraDmg();
        const auto image = lumoraImagePath();
        if (files.fileExists(image)) // an image left behind is replaced by the next download
            static_cast<void>(files.removeItem(image));
    });
}

void OvraLumoraUpdater::unMountingOvraLumoraDmg() {
    guarded(kUnmount, [this] {
        if (!latestLumoraDmgPath_) {
            log("{} : No Lumora DMG is mounted to unmount", kUnmount);
            return;
        }
        const auto result = runImageTool({"detach", *latestLumoraDmgPath_});
        log("{} : Dmg unmount task termination status : {}", kUnmount, result.terminationStatus);
        latestLumoraDmgPath_.reset();
    });
}

} // namespace lumora
