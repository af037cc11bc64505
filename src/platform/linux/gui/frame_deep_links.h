#pragma once

#include "platform/web_view.h"

#include <webkit/webkit.h>

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace lumora::platform::linux_backend {

/// Sees the page's requests for a scheme that the engine cannot load, and answers each with an error. This far the engine
/// tells the top frame from the others, which it does not when it asks whether to navigate. Main thread.
class FrameDeepLinks {
  public:
    using Receiver = std::function<void(const std::string& uri)>;

    /// @param receiver  gets the deep links of frames, not those of the top frame
    FrameDeepLinks(WebKitWebView* view, const std::string& scheme, Receiver receiver);
    ~FrameDeepLinks();
    FrameDeepLinks(const FrameDeepLinks&) = delete;
    FrameDeepLinks& operator=(const FrameDeepLinks&) = delete;

    [[nodiscard]] bool isDeepLink(const std::string& uri) const { return uri.starts_with(prefix_); }

    /// A navigation to this deep link goes on, in whichever frame. Other requests, as for a picture, are none.
    /// @param inTopFrame  cancel: there it ends as one that the navigation policy cancelled, not as a failure
    void letGo(const std::string& uri, NavigationPolicy inTopFrame) { letGo_[uri] = inTopFrame; }

    /// Another page stands: what was let go comes no more.
    void forget() { letGo_.clear(); }

  private:
    /// The context holds on to it, and may outlive this object.
    struct Link {
        FrameDeepLinks* target;
    };

    static void requested(WebKitURISchemeRequest* request, gpointer link);

    /// @return the error's code, of the policy domain.
    [[nodiscard]] int answerTo(const std::string& uri);
    [[nodiscard]] bool isTopFrames(const std::string& uri) const;

    WebKitWebView* view_;
    const std::string prefix_;
    const Receiver receiver_;
    const std::shared_ptr<Link> link_;
    std::map<std::string, NavigationPolicy> letGo_;
};

} // namespace lumora::platform::linux_backend
