#include "platform/linux/gui/linux_backend.h"

#include "config/log_handler.h"
#include "platform/linux/gui/modal_loop.h"
#include "webhost/navigation_policy.h"

namespace lumora::platform::linux_backend {

namespace {

/// The system's own disk-image tool does not exist here: the bundle brings its equivalent.
constexpr const char* kDiskImageTool = "/usr/bin/hdiutil";

std::string toolBeside(const std::string& executable, const std::string& name) {
    return executable.substr(0, executable.rfind('/') + 1) + name;
}

} // namespace

LinuxBackend::LinuxBackend(const std::vector<std::string>& launchArguments, Environment childEnvironment)
    : bundles(LinuxBundles::runningExecutable(), home, propertyLists), fileManager(home),
      preferences(launchArguments, PreferenceFolders::forHome(home.path()), propertyLists),
      workspace(bundles, home, childEnvironment),
      tasks(childEnvironment, {{kDiskImageTool, toolBeside(LinuxBundles::runningExecutable(), "hdiutil")}}),
      appleScripts(std::move(childEnvironment),
                   [this](std::function<void()> work) {
                       return waitForBackgroundWork(mainLoop, mainLoop.tracking(), std::move(work));
                   }),
      application(mainLoop), webViewHost(mainLoop, kDeepLinkScheme),
      alerts(mainLoop.tracking(), [this] { return webViewHost.gtkWindow(); }) {}

std::string LinuxBackend::resourceFolder() { return bundles.mainBundlePath() + "/Contents/Resources"; }

void LinuxBackend::openLogFolder() {
    if (const CharPointer uri{g_filename_to_uri(LogHandler::logFolder().c_str(), nullptr, nullptr)})
        workspace.openUrl(uri.get());
}

} // namespace lumora::platform::linux_backend
