#include "config/session_details.h"
#include "config/utils.h"
#include "platform/bundle.h"
#include "platform/file_manager.h"
#include "platform/ports.h"
#include "support/bundle_version.h"
#include "support/exception_guard.h"
#include "support/log.h"
#include "support/rendering.h"

namespace lumora {

namespace {

constexpr const char* kFindCurrentAppPath = "+[Utils findCurrentAppPath]";
constexpr const char* kGetAppVersion = "+[Utils getOvraLumoraAppVersion]";

constexpr const char* kUnknownVersion = "0";

} // namespace

void Utils::findCurrentAppPath() {
    guarded(kFindCurrentAppPath, [] {
        auto& session = SessionDetails::getInstance();
        session.setLumoraAppPath(platform::ports().bundles->mainBundlePath());
        log("{} Ovra Lumora App path : {}", kFindCurrentAppPath, render(session.lumoraAppPath()));
    });
}

void Utils::getOvraLumoraAppVersion() {
    guarded(kGetAppVersion, [] {
        auto& session = SessionDetails::getInstance();
        const auto path = session.lumoraAppPath();
        if (path && platform::ports().fileManager->fileExists(*path)) {
            session.setLocalOvraLumoraAppVersion(bundleVersion(*path));
            log("{} local Ovra Tessel Lumora App version : {}", kGetAppVersion,
                render(session.localOvraLumoraAppVersion()));
        } else {
            log("{} : Ovra Tessel Lumora app not found, Setting app version to zero ( default)",
                kGetAppVersion);
            session.setLocalOvraLumoraAppVersion(kUnknownVersion);
        }
    });
}

} // namespace lumora
