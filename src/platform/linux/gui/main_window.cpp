#include "platform/linux/gui/main_window.h"

#include "platform/linux/gui/main_menu.h"

namespace lumora::platform::linux_backend {

namespace {

constexpr const char* kFirstTitle = "Ovra Tessel Lumora";
constexpr int kWidth = 1000;
constexpr int kHeight = 700;
constexpr int kSmallestWidth = 360;
constexpr int kSmallestHeight = 320;

constexpr const char* kIconName = "com.ovra.tessel.OvraTesselLumora";

constexpr gboolean kGoOnClosing = FALSE;

} // namespace

MainWindow::MainWindow(GtkApplication* application, WebKitWebView* view, std::function<void()> closed)
    : window_(ObjectRef<GtkWindow>::retain(GTK_WINDOW(gtk_application_window_new(application)))),
      closed_(std::move(closed)), signals_(window_.get()) {
    gtk_window_set_title(window_.get(), kFirstTitle);
    gtk_window_set_default_size(window_.get(), kWidth, kHeight);
    gtk_widget_set_size_request(GTK_WIDGET(view), kSmallestWidth, kSmallestHeight);
    gtk_window_set_child(window_.get(), GTK_WIDGET(view));
    gtk_window_set_focus(window_.get(), GTK_WIDGET(view));

    auto* applicationWindow = GTK_APPLICATION_WINDOW(window_.get());
    gtk_application_window_set_show_menubar(applicationWindow, TRUE);
    installWindowActions(applicationWindow, view);
    signals_.connect("close-request", &MainWindow::closeRequested, this);
}

MainWindow::~MainWindow() = default;

std::string MainWindow::title() { return textOf(gtk_window_get_title(window_.get())); }

void MainWindow::setTitle(const std::string& title) { gtk_window_set_title(window_.get(), title.c_str()); }

void MainWindow::present() { gtk_window_present(window_.get()); }

void setDefaultIcon(const std::string& resourceFolder) {
    gtk_icon_theme_add_search_path(gtk_icon_theme_get_for_display(gdk_display_get_default()),
                                   (resourceFolder + "/icons").c_str());
    gtk_window_set_default_icon_name(kIconName);
}

gboolean MainWindow::closeRequested(GtkWindow*, gpointer data) {
    auto* self = static_cast<MainWindow*>(data);
    if (std::exchange(self->open_, false))
        self->closed_();
    return kGoOnClosing;
}

} // namespace lumora::platform::linux_backend
