#include "platform/macos/macos_backend.h"

namespace lumora::platform::macos_backend {

Ports MacosBackend::ports() {
    return Ports{
        .alerts = &alerts_,
        .appleScripts = &appleScripts_,
        .application = &application_,
        .bundles = &bundles_,
        .distributedNotifications = &distributedNotifications_,
        .fileManager = &fileManager_,
        .httpSessions = &httpSessions_,
        .mainLoop = &mainLoop_,
        .pathMonitors = &pathMonitors_,
        .preferences = &preferences_,
        .processInfo = &processInfo_,
        .propertyLists = &propertyLists_,
        .standardStreams = &standardStreams_,
        .systemVersions = &systemVersions_,
        .tasks = &tasks_,
        .webViewHost = &webViewHost_,
        .workspace = &workspace_,
    };
}

} // namespace lumora::platform::macos_backend
