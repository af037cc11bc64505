#pragma once

#include <webkit/webkit.h>

#include <functional>
#include <memory>
#include <string>

namespace lumora::platform::linux_backend {

/// Sees the page's requests for a scheme that the engine cannot load, answers each with an error, and tells of it. A
/// frame of the page gets as far as this; the top frame, which the filter stops, does not.
class FrameDeepLinks {
  public:
    using Receiver = std::function<void(const std::string& uri)>;

    FrameDeepLinks(WebKitWebContext* context, const std::string& scheme, Receiver receiver);
    ~FrameDeepLinks();
    FrameDeepLinks(const FrameDeepLinks&) = delete;
    FrameDeepLinks& operator=(const FrameDeepLinks&) = delete;

  private:
    using SharedReceiver = std::shared_ptr<Receiver>;

    static void requested(WebKitURISchemeRequest* request, gpointer receiver);

    SharedReceiver receiver_; ///< the context holds another: it may outlive this object
};

} // namespace lumora::platform::linux_backend
