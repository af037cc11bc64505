#include "platform/linux/gui/linux_backend.h"
#include "platform/linux/gui/main_menu.h"
#include "platform/linux/gui/rendering.h"
#include "platform/linux/gui/tls_versions.h"
#include "platform/ports_of.h"
#include "shell/app_delegate.h"
#include "webhost/view_controller.h"

#include <unistd.h>

#include <cstdio>

namespace {

using namespace lumora;
using namespace platform::linux_backend;

/// Everything that lives as long as the process. The load of the page begins before its window is built.
struct RunningApplication {
    AppDelegate delegate;
    ViewController viewController;

    explicit RunningApplication(LinuxBackend& backend) {
        auto& application = backend.application;
        application.setMainMenu(
            installMenuBar(application.handle(), {[&application] { application.terminate(); },
                                                  [&backend] { backend.openLogFolder(); }}));
        delegate.awakeFromNib();
        delegate.applicationWillFinishLaunching();
        viewController.viewDidLoad();
        backend.webViewHost.openWindow(application.handle(), backend.resourceFolder(), [this, &application] {
            if (delegate.applicationShouldTerminateAfterLastWindowClosed())
                application.terminate();
        });
        delegate.applicationDidFinishLaunching();
    }
};

} // namespace

int main(int argc, char** argv) {
    auto childEnvironment = currentEnvironment();
    preferSoftwareRendering();
    refuseOldTls();

    // Never destroyed: work on other threads may still use them when the process ends.
    auto& backend = *new LinuxBackend({argv + 1, argv + argc}, std::move(childEnvironment));
    RunningApplication* running = nullptr;
    platform::ports() = platform::portsOf(backend);

    const int status = backend.application.run(argv[0], [&] { running = new RunningApplication(backend); });
    if (running != nullptr)
        running->delegate.applicationWillTerminate();
    std::fflush(nullptr);
    _exit(status); // no static destructor may race what still runs
}
