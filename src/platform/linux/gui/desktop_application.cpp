#include "platform/linux/gui/desktop_application.h"

#include <glib-unix.h>

#include <array>
#include <csignal>
#include <iterator>

namespace lumora::platform::linux_backend {

namespace {

/// Also names the window's class and the folders of the web view's data.
constexpr const char* kIdentifier = "com.ovra.tessel.OvraTesselLumora";
constexpr const char* kName = "Ovra Tessel Lumora";

constexpr int kEndSignals[] = {SIGTERM, SIGINT, SIGHUP};

} // namespace

DesktopApplication::DesktopApplication(GlibMainLoop& loop) : loop_(loop) {
    g_set_prgname(kIdentifier);
    g_set_application_name(kName);
    application_ =
        ObjectRef<GtkApplication>::adopt(gtk_application_new(kIdentifier, G_APPLICATION_NON_UNIQUE));
}

void DesktopApplication::terminate() {
    loop_.asyncOnMain([this] {
        loop_.tracking().endModalSessions();
        g_application_quit(G_APPLICATION(application_.get()));
    });
}

int DesktopApplication::run(char* programName, std::function<void()> launch) {
    launch_ = std::move(launch);
    std::array<guint, std::size(kEndSignals)> endSignals{};
    for (std::size_t i = 0; i < endSignals.size(); ++i)
        endSignals[i] = g_unix_signal_add(kEndSignals[i], &DesktopApplication::endSignal, this);
    std::signal(SIGPIPE, SIG_IGN); // a peer that hangs up is an error value, not the end

    auto* application = G_APPLICATION(application_.get());
    SignalConnections signals(application);
    signals.connect("activate", &DesktopApplication::activate, this);
    g_application_hold(
        application); // the last window's end is not the application's: the delegate decides that
    std::array<char*, 2> arguments = {programName, nullptr};
    const int status = g_application_run(application, 1, arguments.data());
    for (const guint source : endSignals)
        g_source_remove(source);
    return status;
}

void DesktopApplication::activate(GApplication*, gpointer self) {
    static_cast<DesktopApplication*>(self)->launch_();
}

gboolean DesktopApplication::endSignal(gpointer self) {
    static_cast<DesktopApplication*>(self)->terminate();
    return G_SOURCE_CONTINUE;
}

} // namespace lumora::platform::linux_backend
