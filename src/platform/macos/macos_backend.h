#pragma once

#include "platform/macos/appkit/appkit_alerts.h"
#include "platform/macos/appkit/appkit_application.h"
#include "platform/macos/appkit/appkit_main_loop.h"
#include "platform/macos/appkit/appkit_workspace.h"
#include "platform/macos/foundation/foundation_apple_scripts.h"
#include "platform/macos/foundation/foundation_bundles.h"
#include "platform/macos/foundation/foundation_distributed_notifications.h"
#include "platform/macos/foundation/foundation_file_manager.h"
#include "platform/macos/foundation/foundation_http_sessions.h"
#include "platform/macos/foundation/foundation_preferences.h"
#include "platform/macos/foundation/foundation_property_lists.h"
#include "platform/macos/foundation/foundation_system_versions.h"
#include "platform/macos/foundation/foundation_tasks.h"
#include "platform/macos/network/network_path_monitors.h"
#include "platform/macos/web/webkit_host.h"
#include "platform/posix/posix_process_info.h"
#include "platform/posix/posix_standard_streams.h"

namespace lumora::platform::macos_backend {

/// Every port of the macOS backend, made once for the process's life.
struct MacosBackend {
    posix_backend::PosixStandardStreams standardStreams;
    posix_backend::PosixProcessInfo processInfo;
    FoundationAppleScripts appleScripts;
    FoundationBundles bundles;
    FoundationDistributedNotifications distributedNotifications;
    FoundationFileManager fileManager;
    FoundationHttpSessions httpSessions;
    FoundationPreferences preferences;
    FoundationPropertyLists propertyLists;
    FoundationSystemVersions systemVersions;
    FoundationTasks tasks;
    AppKitAlerts alerts;
    AppKitApplication application;
    AppKitMainLoop mainLoop;
    AppKitWorkspace workspace;
    NetworkPathMonitors pathMonitors;
    WebKitHost webViewHost;
};

} // namespace lumora::platform::macos_backend
