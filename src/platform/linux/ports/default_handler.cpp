#include "platform/linux/ports/default_handler.h"

#include "platform/linux/glib_handles.h"
#include "platform/posix/unique_fd.h"

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

#include <fcntl.h>

#include <algorithm>

namespace lumora::platform::linux_backend {

namespace {

using posix_backend::UniqueFd;

// GIO starts from the process's environment now and takes the differences.
ObjectRef<GAppLaunchContext> contextFor(const Environment& environment) {
    auto context = ObjectRef<GAppLaunchContext>::adopt(g_app_launch_context_new());
    const auto isGiven = [&](const std::string& name) {
        return std::any_of(environment.begin(), environment.end(),
                           [&](const std::string& entry) { return entry.starts_with(name + '='); });
    };
    for (const std::string& entry : currentEnvironment()) {
        if (const std::string name = entry.substr(0, entry.find('=')); !isGiven(name))
            g_app_launch_context_unsetenv(context.get(), name.c_str());
    }
    for (const std::string& entry : environment) {
        if (const std::size_t equals = entry.find('='); equals != std::string::npos)
            g_app_launch_context_setenv(context.get(), entry.substr(0, equals).c_str(),
                                        entry.substr(equals + 1).c_str());
    }
    return context;
}

bool launch(GDesktopAppInfo* handler, const std::string& url, GAppLaunchContext* context) {
    const UniqueFd null(::open("/dev/null", O_RDWR | O_CLOEXEC));
    GList urls{const_cast<char*>(url.c_str()), nullptr, nullptr}; // read only
    GError* error = nullptr;
    const bool launched = g_desktop_app_info_launch_uris_as_manager_with_fds(
        handler, &urls, context, G_SPAWN_SEARCH_PATH, nullptr, nullptr, nullptr, nullptr, null.get(),
        null.get(), null.get(), &error);
    const ErrorPointer owner(error);
    return launched;
}

} // namespace

bool openInDefaultHandler(const std::string& url, const Environment& environment) {
    const CharPointer scheme(g_uri_parse_scheme(url.c_str()));
    if (!scheme)
        return false;
    const auto context = contextFor(environment);
    const auto handler = ObjectRef<GAppInfo>::adopt(g_app_info_get_default_for_uri_scheme(scheme.get()));
    if (handler && G_IS_DESKTOP_APP_INFO(handler.get()))
        return launch(G_DESKTOP_APP_INFO(handler.get()), url, context.get());

    // A file has a handler by its type, not by its scheme.
    GError* error = nullptr;
    const bool launched = g_app_info_launch_default_for_uri(url.c_str(), context.get(), &error);
    const ErrorPointer owner(error);
    return launched;
}

} // namespace lumora::platform::linux_backend
