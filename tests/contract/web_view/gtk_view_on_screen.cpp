#include "platform/linux/gui/webkit_host.h"
#include "platform/linux/gui/webkit_view.h"
#include "view_on_screen.h"

#include <gtk/gtk.h>

namespace lumora::contract {

namespace backend = platform::linux_backend;

namespace {

constexpr const char* kDeepLinkScheme = "ovrajoin";

class GtkViewOnScreen final : public ViewOnScreen {
  public:
    GtkViewOnScreen() : window_(gtk_window_new()) {
        gtk_window_set_child(GTK_WINDOW(window_), GTK_WIDGET(engine()));
        gtk_window_present(GTK_WINDOW(window_));
    }
    ~GtkViewOnScreen() override {
        gtk_window_set_child(GTK_WINDOW(window_), nullptr);
        gtk_window_destroy(GTK_WINDOW(window_));
    }
    GtkViewOnScreen(const GtkViewOnScreen&) = delete;
    GtkViewOnScreen& operator=(const GtkViewOnScreen&) = delete;

    platform::WebView& view() override { return view_; }
    std::string title() override { return backend::textOf(webkit_web_view_get_title(engine())); }
    std::string address() override { return backend::textOf(webkit_web_view_get_uri(engine())); }
    bool isLoading() override { return webkit_web_view_is_loading(engine()) != FALSE; }
    bool killPageProcess() override {
        webkit_web_view_terminate_web_process(engine());
        return true;
    }

  private:
    [[nodiscard]] WebKitWebView* engine() const { return view_.widget(); }

    backend::GlibMainLoop loop_;
    backend::WebKitView view_{loop_, kDeepLinkScheme};
    GtkWidget* window_;
};

class GtkWindowOnScreen final : public WindowOnScreen {
  public:
    GtkWindowOnScreen()
        : application_(backend::ObjectRef<GtkApplication>::adopt(
              gtk_application_new(freshIdentifier().c_str(), G_APPLICATION_NON_UNIQUE))) {
        g_application_register(G_APPLICATION(application_.get()), nullptr, nullptr);
    }

    platform::WebViewHost& host() override { return host_; }
    void open(const std::function<void()>& makeView) override {
        makeView();
        host_.openWindow(application_.get(), "/nowhere", [] {});
    }
    std::string title() override { return backend::textOf(gtk_window_get_title(host_.gtkWindow())); }
    void close() override { gtk_window_close(host_.gtkWindow()); }
    void zoomIn() override { perform("zoom-in"); }
    void showActualSize() override { perform("zoom-reset"); }
    void reload() override { perform("reload"); }

  private:
    void perform(const char* action) {
        g_action_group_activate_action(G_ACTION_GROUP(host_.gtkWindow()), action, nullptr);
    }

    /// Two applications of one process cannot be registered under one name.
    static std::string freshIdentifier() {
        static int made = 0;
        return "com.ovra.tessel.TestsWithWindow" + std::to_string(++made);
    }

    backend::GlibMainLoop loop_;
    backend::ObjectRef<GtkApplication> application_;
    backend::WebKitHost host_{loop_, kDeepLinkScheme};
};

} // namespace

std::unique_ptr<ViewOnScreen> makeViewOnScreen() { return std::make_unique<GtkViewOnScreen>(); }

std::unique_ptr<WindowOnScreen> makeWindowOnScreen() { return std::make_unique<GtkWindowOnScreen>(); }

const int kRefusedCertificateCode = -1202; // NSURLErrorServerCertificateUntrusted

} // namespace lumora::contract
