#include "platform/linux/gui/frame_deep_links.h"

#include "platform/linux/glib_handles.h"

namespace lumora::platform::linux_backend {

FrameDeepLinks::FrameDeepLinks(WebKitWebContext* context, const std::string& scheme, Receiver receiver)
    : receiver_(std::make_shared<Receiver>(std::move(receiver))) {
    webkit_web_context_register_uri_scheme(context, scheme.c_str(), &FrameDeepLinks::requested,
                                           new SharedReceiver(receiver_),
                                           [](gpointer data) { delete static_cast<SharedReceiver*>(data); });
    // Otherwise a frame of an https page is refused as mixed content before this is asked. Nothing is ever loaded by it.
    webkit_security_manager_register_uri_scheme_as_secure(webkit_web_context_get_security_manager(context),
                                                          scheme.c_str());
}

FrameDeepLinks::~FrameDeepLinks() { *receiver_ = nullptr; }

void FrameDeepLinks::requested(WebKitURISchemeRequest* request, gpointer data) {
    const SharedReceiver receiver = *static_cast<SharedReceiver*>(data);
    if (*receiver)
        (*receiver)(textOf(webkit_uri_scheme_request_get_uri(request)));
    const ErrorPointer error(g_error_new_literal(WEBKIT_POLICY_ERROR, WEBKIT_POLICY_ERROR_CANNOT_SHOW_URI,
                                                 "The URL can’t be shown"));
    webkit_uri_scheme_request_finish_error(request, error.get());
}

} // namespace lumora::platform::linux_backend
