#pragma once

#include "platform/linux/ports/http_transfer.h"

#include <functional>
#include <memory>

namespace lumora::platform::linux_backend {

/// Moves the bytes of all the process's requests, on one thread of its own, which starts with the first request. That
/// thread runs no caller's code but `done`, so what an answer sets off never holds up another request.
/// A request under way outlives the transport.
class HttpTransport {
  public:
    /// @param hasNetworkPath  asked on the transport's thread
    HttpTransport(HttpTransferSettings settings, std::function<bool()> hasNetworkPath);
    ~HttpTransport();
    HttpTransport(const HttpTransport&) = delete;
    HttpTransport& operator=(const HttpTransport&) = delete;

    /// Any thread. `done` is called exactly once, on the transport's thread; it hands the outcome on and returns.
    void start(HttpRequest request, const HttpSessionConfiguration& configuration, BodyPlace place,
               std::function<void(HttpOutcome)> done);

  private:
    class Loop;
    const std::shared_ptr<Loop> loop_;
};

} // namespace lumora::platform::linux_backend
