#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace datacentre {

using HeaderList = std::vector<std::pair<std::string, std::string>>;

/// One https request as it came in. `target` is raw; `path` and `query` are its raw halves, without the question mark.
struct ReceivedRequest {
    std::string method;
    std::string target;
    std::string path;
    std::string query;
    std::string host;   ///< the Host header
    HeaderList headers; ///< names in lower case
    std::string body;
    std::string tlsVersion; ///< "TLSv1.3"
    std::string serverName; ///< what the client asked for in its hello, empty when nothing
    std::string remote;
    int localPort = 0;
    /// False as soon as the client has gone; what waits on its behalf looks here.
    std::function<bool()> clientIsThere;

    /// The value of one query parameter, percent-decoded; empty when absent.
    [[nodiscard]] std::string parameter(const std::string& name) const;
};

/// What is sent back.
struct Answer {
    int status = 200;
    std::string contentType;
    std::string body;
    HeaderList headers = {};
};

} // namespace datacentre
