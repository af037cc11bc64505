#include "platform/linux/gui/main_window.h"

#include "platform/linux/gui/main_menu.h"
#include "webhost/window_title.h"

#include <algorithm>

namespace lumora::platform::linux_backend {

namespace {

constexpr int kWidth = 1000;
constexpr int kHeight = 800;
constexpr int kMostPercentOfMonitor = 85;
constexpr int kSmallestWidth = 360;
constexpr int kSmallestHeight = 320;

constexpr const char* kIconName = "com.ovra.tessel.OvraTesselLumora";

constexpr gboolean kGoOnClosing = FALSE;
constexpr gboolean kStay = TRUE;

/// Without a compositor there is no transparency: what should be a menu's shadow and round corners is drawn black.
constexpr const char* kOpaqueMenus = "popover > contents { border-radius: 0; box-shadow: none; }";

void drawMenusOpaque(GdkDisplay* display) {
    const auto style = ObjectRef<GtkCssProvider>::adopt(gtk_css_provider_new());
    gtk_css_provider_load_from_data(style.get(), kOpaqueMenus, -1);
    gtk_style_context_add_provider_for_display(display, GTK_STYLE_PROVIDER(style.get()),
                                               GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}

/// The wanted height, or what a small screen has room for.
int fittingHeight(GdkDisplay* display) {
    const auto monitor = ObjectRef<GdkMonitor>::adopt(
        GDK_MONITOR(g_list_model_get_item(gdk_display_get_monitors(display), 0)));
    if (!monitor)
        return kHeight;
    GdkRectangle area{};
    gdk_monitor_get_geometry(monitor.get(), &area);
    return std::min(kHeight, area.height * kMostPercentOfMonitor / 100);
}

} // namespace

MainWindow::MainWindow(GtkApplication* application, WebKitWebView* view, std::function<bool()> mayClose,
                       std::function<void()> closed)
    : window_(ObjectRef<GtkWindow>::retain(GTK_WINDOW(gtk_application_window_new(application)))),
      colourScheme_(gtk_widget_get_settings(GTK_WIDGET(window_.get()))), mayClose_(std::move(mayClose)),
      closed_(std::move(closed)), signals_(window_.get()) {
    gtk_window_set_title(window_.get(), kFirstWindowTitle);
    GdkDisplay* display = gtk_widget_get_display(GTK_WIDGET(window_.get()));
    gtk_window_set_default_size(window_.get(), kWidth, fittingHeight(display));
    if (gdk_display_is_composited(display) == FALSE)
        drawMenusOpaque(display);
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
    if (!self->mayClose_())
        return kStay;
    if (std::exchange(self->open_, false))
        self->closed_();
    return kGoOnClosing;
}

} // namespace lumora::platform::linux_backend
