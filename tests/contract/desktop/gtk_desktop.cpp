#include "gtk_alerts_on_screen.h"
#include "gtk_menu_bar_on_screen.h"
#include "platform/linux/gui/desktop_application.h"

#include <cstdlib>

namespace lumora::contract {

std::unique_ptr<AlertsOnScreen> makeAlertsOnScreen() { return std::make_unique<GtkAlertsOnScreen>(); }

std::unique_ptr<MenuBarOnScreen> makeMenuBarOnScreen() { return std::make_unique<GtkMenuBarOnScreen>(); }

void runApplication(const std::function<void(platform::Application&)>& steps) {
    platform::linux_backend::GlibMainLoop loop;
    platform::linux_backend::DesktopApplication application(loop);
    char name[] = "tests";
    const int status = application.run(name, [&] { loop.asyncOnMain([&] { steps(application); }); });
    std::_Exit(status);
}

} // namespace lumora::contract
