#pragma once

#include "platform/linux/glib_handles.h"
#include "platform/linux/gui/desktop_colour_scheme.h"
#include "platform/web_view.h"

#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include <functional>

namespace lumora::platform::linux_backend {

/// The application's one window around the web view. Once closed by its user it only remembers its title. Main thread.
class MainWindow final : public Window {
  public:
    /// @param mayClose asked when its user wants to close it; it stays otherwise.
    /// @param closed called in the moment of closing, while the window still stands.
    MainWindow(GtkApplication* application, WebKitWebView* view, std::function<bool()> mayClose,
               std::function<void()> closed);
    ~MainWindow() override;
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;

    [[nodiscard]] std::string title() override;
    void setTitle(const std::string& title) override;

    void present();
    [[nodiscard]] bool isOpen() const { return open_; }
    [[nodiscard]] GtkWidget* widget() const { return GTK_WIDGET(window_.get()); }

  private:
    static gboolean closeRequested(GtkWindow* window, gpointer self);

    ObjectRef<GtkWindow> window_;
    DesktopColourScheme colourScheme_;
    std::function<bool()> mayClose_;
    std::function<void()> closed_;
    SignalConnections signals_;
    bool open_ = true;
};

/// Makes the application's icon, which lies in the resource folder, that of every window to come.
void setDefaultIcon(const std::string& resourceFolder);

} // namespace lumora::platform::linux_backend
