#include "agent/ovra_app_upgrader.h"

#include "agent/agent_paths.h"
#include "agent/ovra_dmg_downloader.h"
#include "config/atomic_field.h"
#include "config/session_details.h"
#include "platform/file_manager.h"
#include "platform/ports.h"
#include "support/bundle_version.h"
#include "support/exception_guard.h"
#include "support/log.h"
#include "support/rendering.h"
#include "support/shared_instance.h"

namespace lumora {

namespace {

constexpr const char* kGetInstance = "+[OvraAppUpgrader getInstance]";
constexpr const char* kVersionCheck = "-[OvraAppUpgrader ovraAppVersionCheck]";
constexpr const char* kUpdater = "-[OvraAppUpgrader ovraAppUpdater]";

constexpr const char* kNoVersion = "0";

SharedInstance<OvraAppUpgrader>& sharedInstance() {
    static auto* shared = new SharedInstance<OvraAppUpgrader>; // chains may still run at exit
    return *shared;
}

/// The downloader of the latest join. An earlier one whose download still runs is kept alive by that download. Two
/// joins may come here at once, on the threads of two update checks.
AtomicField<std::shared_ptr<OvraDmgDownloader>>& ovraDmgDownloader() {
    static auto* latest = new AtomicField<std::shared_ptr<OvraDmgDownloader>>;
    return *latest;
}

/// The capital "A" finds the agent's bundle only where letter case does not count, as on the platform's default
/// volume. Elsewhere the old agent stays, and so do the helper tools that belong to it.
std::string oldAgentPath() { return agentFolder() + "/Ovra.App"; }

} // namespace

OvraAppUpgrader& OvraAppUpgrader::getInstance() {
    return sharedInstance().get([] {
        auto upgrader = std::make_unique<OvraAppUpgrader>();
        guarded(kGetInstance, [] { log("{} : Update Info Object Allocated", kGetInstance); });
        return upgrader;
    });
}

void OvraAppUpgrader::resetForTesting() {
    sharedInstance().resetForTesting();
    ovraDmgDownloader().set(nullptr);
}

void OvraAppUpgrader::ovraAppVersionCheck() {
    guarded(kVersionCheck, [] {
        auto& session = SessionDetails::getInstance();
        const auto path = agentFolder() + "/Ovra.app";
        if (platform::ports().fileManager->fileExists(path)) {
            session.setLocalOvraAppVersion(bundleVersion(path));
            log("{} local Ovra App version : {} {}", kVersionCheck, render(session.localOvraAppVersion()),
                path);
        } else {
            log("{} : Ovra app not found, Setting app version to zero ( default) {}", kVersionCheck, path);
            session.setLocalOvraAppVersion(kNoVersion);
        }
    });
}

void OvraAppUpgrader::ovraAppUpdater() {
    guarded(kUpdater, [this] {
        const auto oldAgent = oldAgentPath();
        const auto downloader = std::make_shared<OvraDmgDownloader>();
        ovraDmgDownloader().set(downloader);

        if (SessionDetails::getInstance().isUpdateNeeded()) {
            log("{} : Updated Ovra App Version Available in Server..", kUpdater);
            auto& files = *platform::ports().fileManager;
            if (files.fileExists(
                    oldAgent)) // one that stays makes the new one's copy fail, which changes nothing
                static_cast<void>(files.removeItem(oldAgent));
            modifyOvraJoinDetails();
            downloader->startDownLoadingOvraMacDmg();
        } else {
            log("{} : This mac has latest Ovra App", kUpdater);
            modifyOvraJoinDetails();
            downloader->workspaceLaunchApplication(installedAgentPath());
        }
    });
}

} // namespace lumora
