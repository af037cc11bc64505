#pragma once

#include "platform/http_session.h"
#include "platform/linux/ports/http_transport.h"

#include <functional>
#include <memory>

namespace lumora::platform::linux_backend {

/// Whether the system has any usable network, by its network monitor.
[[nodiscard]] bool systemHasNetworkPath();

/// HTTP by libcurl. No cookies, cache or stored credentials of any kind; the environment's proxies are honoured.
class LinuxHttpSessions final : public HttpSessions {
  public:
    explicit LinuxHttpSessions(HttpTransferSettings settings = {},
                               std::function<bool()> hasNetworkPath = systemHasNetworkPath);

    std::shared_ptr<HttpSession> makeSession(const HttpSessionConfiguration& configuration) override;
    HttpAnswer sendSynchronously(const HttpRequest& request) override;

  private:
    const std::shared_ptr<HttpTransport> transport_;
};

} // namespace lumora::platform::linux_backend
