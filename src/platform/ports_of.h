#pragma once

#include "platform/ports.h"

namespace lumora::platform {

/// The ports of a backend whose members are named after them.
template <class Backend>
[[nodiscard]] Ports portsOf(Backend& backend) {
    return {
        .alerts = &backend.alerts,
        .appleScripts = &backend.appleScripts,
        .application = &backend.application,
        .bundles = &backend.bundles,
        .distributedNotifications = &backend.distributedNotifications,
        .fileManager = &backend.fileManager,
        .httpSessions = &backend.httpSessions,
        .mainLoop = &backend.mainLoop,
        .pathMonitors = &backend.pathMonitors,
        .preferences = &backend.preferences,
        .processInfo = &backend.processInfo,
        .propertyLists = &backend.propertyLists,
        .standardStreams = &backend.standardStreams,
        .systemVersions = &backend.systemVersions,
        .tasks = &backend.tasks,
        .webViewHost = &backend.webViewHost,
        .workspace = &backend.workspace,
    };
}

} // namespace lumora::platform
