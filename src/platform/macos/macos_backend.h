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
#include "platform/ports.h"
#include "platform/posix/posix_process_info.h"
#include "platform/posix/posix_standard_streams.h"

namespace lumora::platform::macos_backend {

/// Every port of the macOS backend, made once for the process's life.
class MacosBackend {
  public:
    /// The ports as the core asks for them.
    [[nodiscard]] Ports ports();

    [[nodiscard]] WebKitHost& webViewHost() { return webViewHost_; }

  private:
    posix_backend::PosixStandardStreams standardStreams_;
    posix_backend::PosixProcessInfo processInfo_;
    FoundationAppleScripts appleScripts_;
    FoundationBundles bundles_;
    FoundationDistributedNotifications distributedNotifications_;
    FoundationFileManager fileManager_;
    FoundationHttpSessions httpSessions_;
    FoundationPreferences preferences_;
    FoundationPropertyLists propertyLists_;
    FoundationSystemVersions systemVersions_;
    FoundationTasks tasks_;
    AppKitAlerts alerts_;
    AppKitApplication application_;
    AppKitMainLoop mainLoop_;
    AppKitWorkspace workspace_;
    NetworkPathMonitors pathMonitors_;
    WebKitHost webViewHost_;
};

} // namespace lumora::platform::macos_backend
