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
#include "platform/ports.h"
#include "platform/posix/posix_process_info.h"
#include "platform/posix/posix_standard_streams.h"

#include <string>
#include <vector>

namespace lumora::platform::linux_backend {

/// Every port of the Linux backend, made once for the process's life.
class LinuxBackend {
  public:
    /// @param launchArguments   without the program's name
    /// @param childEnvironment  what every child process gets
    LinuxBackend(const std::vector<std::string>& launchArguments, Environment childEnvironment);

    /// The ports as the core asks for them.
    [[nodiscard]] Ports ports();

    [[nodiscard]] DesktopApplication& application() { return application_; }
    [[nodiscard]] WebKitHost& webViewHost() { return webViewHost_; }
    [[nodiscard]] std::string resourceFolder();

    /// Shows the folder of the log files in the desktop's file manager.
    void openLogFolder();

  private:
    posix_backend::PosixStandardStreams standardStreams_;
    posix_backend::PosixProcessInfo processInfo_;
    HomeFolder home_;
    LinuxPropertyLists propertyLists_;
    LinuxBundles bundles_;
    LinuxFileManager fileManager_;
    LinuxPreferences preferences_;
    LinuxSystemVersions systemVersions_;
    LinuxDistributedNotifications distributedNotifications_;
    LinuxWorkspace workspace_;
    LinuxTaskRunner tasks_;
    GlibMainLoop mainLoop_;
    LinuxAppleScripts appleScripts_;
    GioPathMonitors pathMonitors_;
    LinuxHttpSessions httpSessions_;
    DesktopApplication application_;
    WebKitHost webViewHost_;
    GtkAlerts alerts_;
};

} // namespace lumora::platform::linux_backend
