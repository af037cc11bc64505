#include "config/session_details.h"
#include "config/utils.h"
#include "platform/file_manager.h"
#include "platform/ports.h"
#include "platform/task.h"
#include "selfupdate/staged_bundle.h"
#include "support/log.h"
#include "support/paths.h"
#include "support/rendering.h"

namespace lumora {

namespace {

constexpr const char* kUpdate = "+[Utils updateLumoraIfNeeded]";

constexpr const char* kDefaultTarget = "/Applications/Ovra Tessel Lumora.app";

constexpr const char* kPermissionTool = "/bin/chmod";
constexpr int kToolNeverStarted = 127; // what a shell reports for a tool that it cannot find

/// The bundle that runs is the one to replace, wherever it lies.
std::string replacementTarget(const SessionDetails& session) {
    auto target = session.lumoraAppPath().value_or("");
    if (target.empty()) {
        target = kDefaultTarget;
        log("{} lumoraAppPath not set, defaulting to {}", kUpdate, target);
    }
    log("{} App will be updated at its current location: {}", kUpdate, target);
    return target;
}

/// World-writable on purpose: any user of the machine may then apply the next update.
void openPermissions(const std::string& target) {
    const auto result =
        platform::ports().tasks->run(kPermissionTool, {"-R", "777", target}, platform::TaskOutput::discard);
    const int status = result ? result.value().terminationStatus : kToolNeverStarted;
    if (status != 0)
        log("{} Failed to set 777 permissions on {}, termination status: {}", kUpdate, target, status);
    else
        log("{} Successfully set 777 permissions on {}", kUpdate, target);
}

/// Removes first, then copies, without a backup: a bundle that cannot be removed must stay as it is.
bool replaceBundle(const std::string& staged, const std::string& target, const SessionDetails& session) {
    auto& files = *platform::ports().fileManager;
    if (const auto removed = files.removeItem(target); !removed) {
        log("{} Failed to Remove Existing old Lumora app ({}) in folder {} Error:  {}", kUpdate,
            render(session.localOvraLumoraAppVersion()), target, render(removed.error()));
        return false;
    }
    if (!files.copyItem(staged, target)) {
        log("{} Failed to copy Updated Lumora app to folder {}", kUpdate, target);
        return false;
    }
    log("{} Updated Lumora app Copied to {}", kUpdate, target);
    return true;
}

void applyStagedBundle(const SessionDetails& session) {
    log("{} Updated Lumora Downloaded from server and Initiate to Copy ", kUpdate);
    const auto target = replacementTarget(session);
    const auto folder = session.ovraLumoraNativeFolder();

    const StagedBundleTurn turn;
    const auto staged = folder ? appendPathComponent(*folder, kLumoraBundleName) : std::string();
    if (staged.empty() || !platform::ports().fileManager->fileExists(staged)) {
        log("{} There is No Updated Lumora App Present in {}", kUpdate, render(folder));
        return;
    }
    if (replaceBundle(staged, target, session))
        openPermissions(target);
}

} // namespace

void Utils::updateLumoraIfNeeded() {
    const auto& session = SessionDetails::getInstance();
    if (session.isAppReplaceFlag())
        applyStagedBundle(session);
    else
        log("{} There is No Updated App downloaded from server.", kUpdate);
    log("{} : ************************** Ovra Lumora App terminated ******* \n\n", kUpdate);
}

} // namespace lumora
