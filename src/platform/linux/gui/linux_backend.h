#pragma once

#include "platform/linux/gui/desktop_application.h"
#include "platform/linux/gui/gio_path_monitors.h"
#include "platform/linux/gui/glib_main_loop.h"
#include "platform/linux/gui/gtk_alerts.h"
#include "platform/linux/gui/webkit_host.h"
#include "platform/linux/ports/linux_apple_scripts.h"
#include "platform/linux/ports/linux_bundles.h"
#include "platform/linux/ports/linux_distributed_notifications.h"
#include "platform/linux/ports/linux_file_manager.h"
#include "platform/linux/ports/linux_http_sessions.h"
#include "platform/linux/ports/linux_preferences.h"
#include "platform/linux/ports/linux_property_lists.h"
#include "platform/linux/ports/linux_system_versions.h"
#include "platform/linux/ports/linux_task_runner.h"
#include "platform/linux/ports/linux_workspace.h"
#include "platform/posix/posix_process_info.h"
#include "platform/posix/posix_standard_streams.h"

#include <string>
#include <vector>

namespace lumora::platform::linux_backend {

/// Every port of the Linux backend, made once for the process's life.
struct LinuxBackend {
    /// @param launchArguments   without the program's name
    /// @param childEnvironment  what every child process gets
    LinuxBackend(const std::vector<std::string>& launchArguments, Environment childEnvironment);

    [[nodiscard]] std::string resourceFolder();

    /// Shows the folder of the log files in the desktop's file manager.
    void openLogFolder();

    posix_backend::PosixStandardStreams standardStreams;
    posix_backend::PosixProcessInfo processInfo;
    HomeFolder home;
    LinuxPropertyLists propertyLists;
    LinuxBundles bundles;
    LinuxFileManager fileManager;
    LinuxPreferences preferences;
    LinuxSystemVersions systemVersions;
    LinuxDistributedNotifications distributedNotifications;
    LinuxWorkspace workspace;
    LinuxTaskRunner tasks;
    GlibMainLoop mainLoop;
    LinuxAppleScripts appleScripts;
    GioPathMonitors pathMonitors;
    LinuxHttpSessions httpSessions;
    DesktopApplication application;
    WebKitHost webViewHost;
    GtkAlerts alerts;
};

} // namespace lumora::platform::linux_backend
