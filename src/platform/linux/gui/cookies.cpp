#include "platform/linux/gui/cookies.h"

#include "platform/linux/glib_handles.h"
#include "platform/posix/unique_fd.h"

#include <fcntl.h>

namespace lumora::platform::linux_backend {

namespace {

constexpr int kOwnersFolder = 0700;
constexpr int kOwnersFile = 0600;

/// The engine would make it readable for everyone. An empty file is an empty database.
void makePrivate(const std::string& folder, const std::string& file) {
    g_mkdir_with_parents(folder.c_str(), kOwnersFolder);
    const posix_backend::UniqueFd made(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kOwnersFile));
}

} // namespace

void keepCookies(WebKitWebView* view) {
    WebKitNetworkSession* session = webkit_web_view_get_network_session(view);
    const std::string folder = textOf(webkit_website_data_manager_get_base_data_directory(
        webkit_network_session_get_website_data_manager(session)));
    const std::string file = folder + "/cookies.sqlite";
    makePrivate(folder, file);
    webkit_cookie_manager_set_persistent_storage(webkit_network_session_get_cookie_manager(session),
                                                 file.c_str(), WEBKIT_COOKIE_PERSISTENT_STORAGE_SQLITE);
}

} // namespace lumora::platform::linux_backend
