#include "platform/linux/gui/linux_backend.h"

#include "config/log_handler.h"
#include "platform/linux/gui/modal_loop.h"

namespace lumora::platform::linux_backend {

namespace {

/// The system's own disk-image tool does not exist here: the bundle brings its equivalent.
constexpr const char* kDiskImageTool = "/usr/bin/hdiutil";

/// The service's own links, handed to the operating system wherever in the page they are opened.
constexpr const char* kDeepLinkScheme = "ovrajoin";

std::string toolBeside(const std::string& executable, const std::string& name) {
    return executable.substr(0, executable.rfind('/') + 1) + name;
}

} // namespace

LinuxBackend::LinuxBackend(const std::vector<std::string>& launchArguments, Environment childEnvironment)
    : bundles_(LinuxBundles::runningExecutable(), home_, propertyLists_), fileManager_(home_),
      preferences_(launchArguments, PreferenceFolders::forHome(home_.path()), propertyLists_),
      workspace_(bundles_, home_, childEnvironment),
      tasks_(childEnvironment, {{kDiskImageTool, toolBeside(LinuxBundles::runningExecutable(), "hdiutil")}}),
      appleScripts_(std::move(childEnvironment),
                    [this](std::function<void()> work) {
                        return waitForBackgroundWork(mainLoop_, mainLoop_.tracking(), std::move(work));
                    }),
      application_(mainLoop_), webViewHost_(mainLoop_, kDeepLinkScheme),
      alerts_(mainLoop_.tracking(), [this] { return webViewHost_.gtkWindow(); }) {}

Ports LinuxBackend::ports() {
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

std::string LinuxBackend::resourceFolder() { return bundles_.mainBundlePath() + "/Contents/Resources"; }

void LinuxBackend::openLogFolder() {
    if (const CharPointer uri{g_filename_to_uri(LogHandler::logFolder().c_str(), nullptr, nullptr)})
        workspace_.openUrl(uri.get());
}

} // namespace lumora::platform::linux_backend
