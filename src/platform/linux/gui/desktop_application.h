#pragma once

#include "platform/application.h"
#include "platform/linux/glib_handles.h"
#include "platform/linux/gui/glib_main_loop.h"
#include "platform/menu.h"

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <utility>

namespace lumora::platform::linux_backend {

/// The application object on the desktop. Not unique on the session bus: a second start is a second process.
class DesktopApplication final : public Application {
  public:
    explicit DesktopApplication(GlibMainLoop& loop);

    /// Callable from any thread. The end signals (SIGTERM, SIGINT, SIGHUP) do the same.
    /// What is modal ends first, without an answer.
    void terminate() override;

    [[nodiscard]] Menu* mainMenu() override { return mainMenu_.get(); }
    void setMainMenu(std::unique_ptr<Menu> menu) { mainMenu_ = std::move(menu); }

    /// Connects to the display, launches on the running main loop, and returns when the application is to end.
    /// No launch argument gets in here: they are preferences, and the toolkit would take them for options of its own.
    int run(char* programName, std::function<void()> launch);

    [[nodiscard]] GtkApplication* handle() const { return application_.get(); }

  private:
    static void activate(GApplication* application, gpointer self);
    static gboolean endSignal(gpointer self);

    GlibMainLoop& loop_;
    ObjectRef<GtkApplication> application_;
    std::unique_ptr<Menu> mainMenu_;
    std::function<void()> launch_;
};

} // namespace lumora::platform::linux_backend
