#include "platform/linux/gui/frame_deep_links.h"

#include "platform/linux/glib_handles.h"

namespace lumora::platform::linux_backend {

FrameDeepLinks::FrameDeepLinks(WebKitWebView* view, const std::string& scheme, Receiver receiver)
    : view_(view), prefix_(scheme + ":"), receiver_(std::move(receiver)),
      link_(std::make_shared<Link>(Link{this})) {
    WebKitWebContext* context = webkit_web_view_get_context(view);
    using Shared = std::shared_ptr<Link>;
    webkit_web_context_register_uri_scheme(context, scheme.c_str(), &FrameDeepLinks::requested,
                                           new Shared(link_),
                                           [](gpointer data) { delete static_cast<Shared*>(data); });
    // Otherwise a frame of an https page is refused as mixed content before this is asked. Nothing is ever loaded by it.
    webkit_security_manager_register_uri_scheme_as_secure(webkit_web_context_get_security_manager(context),
                                                          scheme.c_str());
}

FrameDeepLinks::~FrameDeepLinks() { link_->target = nullptr; }

void FrameDeepLinks::requested(WebKitURISchemeRequest* request, gpointer data) {
    FrameDeepLinks* self = (*static_cast<std::shared_ptr<Link>*>(data))->target;
    const std::string uri = textOf(webkit_uri_scheme_request_get_uri(request));
    const int code = self == nullptr ? WEBKIT_POLICY_ERROR_CANNOT_SHOW_URI : self->answerTo(uri);
    const ErrorPointer error(g_error_new_literal(WEBKIT_POLICY_ERROR, code, "The URL can’t be shown"));
    webkit_uri_scheme_request_finish_error(request, error.get());
}

int FrameDeepLinks::answerTo(const std::string& uri) {
    const auto found = letGo_.find(uri);
    if (found == letGo_.end())
        return WEBKIT_POLICY_ERROR_CANNOT_SHOW_URI;
    const NavigationPolicy inTopFrame = found->second;
    letGo_.erase(found);
    if (!isTopFrames(uri))
        receiver_(uri);
    else if (inTopFrame == NavigationPolicy::cancel)
        return WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE;
    return WEBKIT_POLICY_ERROR_CANNOT_SHOW_URI;
}

// The view's own address is still that of the page that stands.
bool FrameDeepLinks::isTopFrames(const std::string& uri) const {
    WebKitWebResource* page = webkit_web_view_get_main_resource(view_);
    return webkit_web_view_is_loading(view_) != FALSE && page != nullptr &&
           textOf(webkit_web_resource_get_uri(page)) == uri;
}

} // namespace lumora::platform::linux_backend
