#pragma once

#include "config/session_details.h"
#include "fakes/core_test.h"
#include "fakes/log_lines.h"
#include "selfupdate/ovra_lumora_updater.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>

namespace lumora {

inline constexpr const char* kStagingFolder =
    "/Users/casey/Library/Application Support/OvraLumoraNativeFolder/";
inline constexpr const char* kStagedBundle =
    "/Users/casey/Library/Application Support/OvraLumoraNativeFolder/Ovra Tessel Lumora.app";
inline constexpr const char* kUpdateImage =
    "/Users/casey/Library/Application Support/OvraLumoraNativeFolder/OvraTesselLumora.dmg";
inline constexpr const char* kBundleOnVolume = "/Volumes/Lumora Plugin/Ovra Tessel Lumora.app";

class SelfUpdateTest : public CoreTest {
  protected:
    SelfUpdateTest() : updater(OvraLumoraUpdater::getInstance()) {
        session.setWebServerName("com.ovratessel.example");
        session.setLumoraUpdateNeeded(true);
        files.putFolder(kStagingFolder);
        forgetLines();
    }

    /// What an image tool that knows its work does: the volume appears, and its mount point ends the output.
    void mountWorks() {
        tasks.onRun = [this](const auto& run,
                             platform::TaskOutput) -> platform::Result<platform::TaskResult> {
            if (run.at(1) != "mount")
                return platform::TaskResult{};
            putVolume("new version");
            return platform::TaskResult{0, "/dev/disk4\tGUID_partition_scheme\t\n"
                                           "/dev/disk4s1\tApple_HFS\t/Volumes/Lumora Plugin\n"};
        };
    }

    void putVolume(const std::string& executable) {
        files.putFolder(kBundleOnVolume);
        files.putFile(std::string(kBundleOnVolume) + "/Contents/MacOS/Ovra Tessel Lumora", executable);
    }

    /// The staged bundle's executable; empty when there is none.
    std::string staged() {
        const auto* file = files.file(std::string(kStagedBundle) + "/Contents/MacOS/Ovra Tessel Lumora");
        return file != nullptr ? file->contents : "";
    }

    SessionDetails& session = SessionDetails::getInstance();
    std::shared_ptr<OvraLumoraUpdater> updater;
};

} // namespace lumora
