// From the downloaded image to the installed and running agent: mount, copy, launch, clean up, detach.

#include "agent/agent_paths.h"
#include "agent/ovra_dmg_downloader.h"
#include "agent/session_status.h"
#include "platform/file_manager.h"
#include "platform/ports.h"
#include "support/disk_images.h"
#include "support/exception_guard.h"
#include "support/log.h"

#include <array>

namespace lumora {

namespace {

constexpr const char* kMount = "-[OvraDmgDownloader mountingOvraMacDmg]";
constexpr const char* kCopyAndLaunch = "-[OvraDmgDownloader copyAppFileAndLaunch]";
constexpr const char* kUnmount = "-[OvraDmgDownloader unMountingOvraMacDmg]";

/// Fixed: the volume's name belongs to the image.
constexpr const char* kVolume = "/Volumes/Ovra";

/// An entry of the volume that goes under the same name into the agent's folder, and what follows the operation's
/// name in the line about it.
struct Entry {
    const char* name;
    const char* copiedText;
};

constexpr Entry kAgent{"Ovra.app", " : Ovra.app file copied"};

constexpr std::array<Entry, 6> kHelperTools{{
    {"OvraCrashDetector", " : OvraCrashDetector file copied"},
    {"TesselUserHandler", " : TesselUserHandler file copied"},
    {"OTPreLogin", " :OTPreLogin file copied"},
    {"OvraPingAgent", " :OvraPingAgent file copied"},
    {"RemoteScriptLauncher", " :RemoteScriptLauncher file copied"},
    {"tools_mac", " :tools_mac file copied"},
}};

/// An entry that stands there already stays: its copy fails, and only a success is told.
void copyFromVolume(platform::FileManager& files, const Entry& entry) {
    if (files.copyItem(std::string(kVolume) + "/" + entry.name, inAgentFolder(entry.name)))
        log("{}{}", kCopyAndLaunch, entry.copiedText);
}

void removeImage(platform::FileManager& files) { static_cast<void>(files.removeItem(agentImagePath())); }

void copyHelperTools(platform::FileManager& files) {
    for (const auto& tool : kHelperTools)
        copyFromVolume(files, tool);
    if (files.fileExists(installedAgentPath()) && files.fileExists(inAgentFolder("OvraCrashDetector")))
        removeImage(files);
}

} // namespace

void OvraDmgDownloader::mountingOvraMacDmg() {
    guardedTellingOthers(kMount, [this] {
        const auto result = runImageTool({"mount", agentImagePath()});
        log("{} : dmg mount task termination status : {}", kMount, result.terminationStatus);
        if (platform::ports().fileManager->fileExists(installedAgentPath()))
            return; // an agent that could not be removed is not mixed with a newer one's tools
        copyAppFileAndLaunch();
        unMountingOvraMacDmg(); // a second time: harmless, and the only one when the installation broke off
    });
}

void OvraDmgDownloader::copyAppFileAndLaunch() {
    guardedTellingOthers(kCopyAndLaunch, [this] {
        auto& files = *platform::ports().fileManager;
        static_cast<void>(
            files.createDirectoryWithIntermediates(agentFolder())); // the copies tell if it matters
        copyFromVolume(files, kAgent);

        // The agent starts before its tools are there: the customer waits for the agent, and it for nobody.
        const auto agent = installedAgentPath();
        if (workspaceLaunchApplication(agent)) {
            log("{} : App Path : {} ovra app file launched!", kCopyAndLaunch, agent);
            copyHelperTools(files);
        } else {
            log("ovra app file not launched");
            postAgentNotStarted();
        }

        if (files.fileExists(agentImagePath()))
            removeImage(files);
        unMountingOvraMacDmg();
    });
}

void OvraDmgDownloader::unMountingOvraMacDmg() {
    guarded(kUnmount, [] {
        const auto result = runImageTool({"detach", kVolume});
        log("{} : Dmg unmount task termination status : {}", kUnmount, result.terminationStatus);
    });
}

} // namespace lumora
