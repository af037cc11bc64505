#include "platform/linux/gui/page_requests.h"

namespace lumora::platform::linux_backend {

namespace {

constexpr gboolean kHandled = TRUE;

gboolean answerDialog(WebKitWebView*, WebKitScriptDialog* dialog, gpointer) {
    // Leaving a page is never held up; a confirm is answered "no", a prompt with nothing.
    if (webkit_script_dialog_get_dialog_type(dialog) == WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM)
        webkit_script_dialog_confirm_set_confirmed(dialog, TRUE);
    return kHandled;
}

gboolean denyPermission(WebKitWebView*, WebKitPermissionRequest* request, gpointer) {
    webkit_permission_request_deny(request);
    return kHandled;
}

gboolean goOnWithoutCredentials(WebKitWebView*, WebKitAuthenticationRequest* request, gpointer) {
    webkit_authentication_request_authenticate(request, nullptr);
    return kHandled;
}

gboolean chooseNoFile(WebKitWebView*, WebKitFileChooserRequest* request, gpointer) {
    webkit_file_chooser_request_cancel(request);
    return kHandled;
}

gboolean printNothing(WebKitWebView*, WebKitPrintOperation*, gpointer) { return kHandled; }

gboolean showNoNotification(WebKitWebView*, WebKitNotification*, gpointer) { return kHandled; }

void cancelDownload(WebKitNetworkSession*, WebKitDownload* download, gpointer) {
    webkit_download_cancel(download);
}

} // namespace

void answerPageRequestsSilently(WebKitWebView* view) {
    g_signal_connect(view, "script-dialog", G_CALLBACK(answerDialog), nullptr);
    g_signal_connect(view, "permission-request", G_CALLBACK(denyPermission), nullptr);
    g_signal_connect(view, "authenticate", G_CALLBACK(goOnWithoutCredentials), nullptr);
    g_signal_connect(view, "run-file-chooser", G_CALLBACK(chooseNoFile), nullptr);
    g_signal_connect(view, "print", G_CALLBACK(printNothing), nullptr);
    g_signal_connect(view, "show-notification", G_CALLBACK(showNoNotification), nullptr);
    // The session is shared by every view, and a download that is cancelled twice crashes the engine.
    WebKitNetworkSession* session = webkit_web_view_get_network_session(view);
    g_signal_handlers_disconnect_by_func(session, reinterpret_cast<gpointer>(cancelDownload), nullptr);
    g_signal_connect(session, "download-started", G_CALLBACK(cancelDownload), nullptr);
}

void applySettings(WebKitSettings* settings) {
    webkit_settings_set_javascript_can_open_windows_automatically(settings, TRUE);
    webkit_settings_set_enable_developer_extras(settings, FALSE);
    // A page that comes back from this cache reports the requests that its leaving cut off as its own failed load.
    webkit_settings_set_enable_page_cache(settings, FALSE);
    webkit_settings_set_enable_fullscreen(settings, FALSE);
    webkit_settings_set_hardware_acceleration_policy(settings, WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
}

} // namespace lumora::platform::linux_backend
