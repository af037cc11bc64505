#include "agent/ovra_dmg_downloader.h"
#include "agent/session_status.h"
#include "platform/distributed_notifications.h"
#include "platform/ports.h"
#include "platform/workspace.h"
#include "support/log.h"
#include "support/paths.h"
#include "support/rendering.h"

namespace lumora {

namespace {

constexpr const char* kLaunch = "-[OvraDmgDownloader workspaceLaunchApplication:]";

/// The agent expects the times' shape and never reads them: they are not filled in.
constexpr const char* kTimestamps =
    R"({"M3":"Agent downloaded time : 00:00:00 | Server : CDN","M2":"Session Validated : 00:00:00",)"
    R"("M1":"Join Launched time : 00:00:00","M4":"Agent launched time : 00:00:00"})";

} // namespace

void postAgentNotStarted() {
    platform::ports().distributedNotifications->post("SendSessionStatusToTesselLumora", "status", 0);
}

bool OvraDmgDownloader::workspaceLaunchApplication(const std::string& path) {
    guardedTellingOthers(kLaunch, [&path] {
        const std::vector<std::string> arguments{"-timestamps", kTimestamps};
        // Whether the agent came up shows in the agent itself; the line below is written either way.
        static_cast<void>(platform::ports().workspace->launchApplication(path, arguments));
        log("{} : LaunchApplication: {} launched successfully with args : {}", kLaunch,
            lastPathComponent(path), render(arguments));
    });
    return true;
}

} // namespace lumora
