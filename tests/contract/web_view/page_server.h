#pragma once

#include "support/test_server.h"

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace lumora::contract {

/// A web server on threads of its own: pages by path, some of which misbehave.
class PageServer {
  public:
    enum class Protocol { http, httpsWithUnknownAuthority };

    explicit PageServer(Protocol protocol = Protocol::http);

    void page(const std::string& path, const std::string& html);
    void redirect(const std::string& path, const std::string& target);
    void hang(const std::string& path);                            ///< takes the request and never answers
    void cutOff(const std::string& path, const std::string& html); ///< announces more than this, and closes

    /// The address of a path on the host of that name, which is this machine.
    [[nodiscard]] std::string url(const std::string& path, const std::string& host = "localhost") const {
        return server_.url(path, host);
    }

    /// How often the path was asked for.
    [[nodiscard]] int requests(const std::string& path) const;

  private:
    struct Answer {
        enum class Kind { missing, page, redirect, hang, cutOff } kind = Kind::missing;
        std::string text;
    };

    void answer(Connection& connection, const std::string& head);
    [[nodiscard]] Answer answerTo(const std::string& path);

    const TestAuthority authority_;
    const OpenSslPointer<SSL_CTX> context_; ///< null for plain http
    mutable std::mutex mutex_;
    std::map<std::string, Answer> answers_;
    std::vector<std::string> log_;
    TestServer server_; ///< the last: its connections end before what they use
};

} // namespace lumora::contract
