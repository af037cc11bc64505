#pragma once

#include "agent/ovra_app_upgrader.h"
#include "agent/ovra_dmg_downloader.h"
#include "config/session_details.h"
#include "fakes/core_test.h"
#include "fakes/log_lines.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace lumora {

inline const std::string kAgentFolder = "/Users/casey/Library/Application Support/OvraVarloNative/";
inline const std::string kAgent = kAgentFolder + "Ovra.app";
inline const std::string kAgentImage = kAgentFolder + "OvraMac.dmg";
inline const std::string kJoinDetails = kAgentFolder + "ovrajoindetails.conf";

inline const std::string kTimestamps =
    "{\"M3\":\"Agent downloaded time : 00:00:00 | Server : CDN\",\"M2\":\"Session Validated : "
    "00:00:00\",\"M1\":\"Join Launched time : 00:00:00\",\"M4\":\"Agent launched time : 00:00:00\"}";

/// How the launch is logged, whether or not it succeeded.
inline const std::string kLaunchLine = "-[OvraDmgDownloader workspaceLaunchApplication:] : "
                                       "LaunchApplication: Ovra.app launched successfully with args "
                                       ": [\"-timestamps\",\"{\\\"M3\\\":\\\"Agent downloaded time : "
                                       "00:00:00 | Server : CDN\\\",\\\"M2\\\":\\\"Session "
                                       "Validated : 00:00:00\\\",\\\"M1\\\":\\\"Join Launched time : "
                                       "00:00:00\\\",\\\"M4\\\":\\\"Agent launched time : "
                                       "00:00:00\\\"}\"]";

class AgentTest : public CoreTest {
  protected:
    AgentTest() { files.putFolder(kAgentFolder); }

    void putAgent(const std::string& version) {
        files.putFolder(kAgent);
        files.putFile(kAgent + "/Contents/MacOS/Ovra", version);
    }

    [[nodiscard]] std::string installedAgent() const {
        const auto* file = files.file(kAgent + "/Contents/MacOS/Ovra");
        return file != nullptr ? file->contents : "";
    }

    /// The whole content of the agent's image, as it appears when mounted.
    void putVolume() {
        files.putFolder("/Volumes/Ovra");
        files.putFolder("/Volumes/Ovra/Ovra.app");
        files.putFile("/Volumes/Ovra/Ovra.app/Contents/MacOS/Ovra", "new agent");
        files.putFile("/Volumes/Ovra/OvraCrashDetector", "crash detector");
        files.putFile("/Volumes/Ovra/TesselUserHandler", "user handler");
        files.putFile("/Volumes/Ovra/OTPreLogin", "pre-login");
        files.putFile("/Volumes/Ovra/OvraPingAgent", "ping");
        files.putFile("/Volumes/Ovra/RemoteScriptLauncher", "scripts");
        files.putFolder("/Volumes/Ovra/tools_mac");
        files.putFile("/Volumes/Ovra/tools_mac/tool", "tool");
    }

    /// The image tool mounts and detaches; a second detach finds no volume.
    void mountWorks() {
        tasks.onRun = [this](const auto& run, platform::TaskOutput) {
            if (run.at(1) == "mount") {
                putVolume();
                return platform::TaskResult{};
            }
            return platform::TaskResult{files.removeItem("/Volumes/Ovra") ? 0 : 1, ""};
        };
    }

    static platform::Result<platform::TaskResult> neverStarted() {
        return platform::Error{"NSPOSIXErrorDomain", 2, "No such file or directory", {}};
    }

    SessionDetails& session = SessionDetails::getInstance();
};

} // namespace lumora
