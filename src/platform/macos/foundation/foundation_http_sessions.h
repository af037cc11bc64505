#pragma once

#include "platform/http_session.h"

namespace lumora::platform::macos_backend {

/// `NSURLSession`. Completions run on each session's own serial queue.
class FoundationHttpSessions final : public HttpSessions {
  public:
    std::shared_ptr<HttpSession> makeSession(const HttpSessionConfiguration& configuration) override;
    HttpAnswer sendSynchronously(const HttpRequest& request) override;
};

} // namespace lumora::platform::macos_backend
