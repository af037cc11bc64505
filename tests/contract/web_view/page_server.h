#pragma once

#include <libsoup/soup.h>

#include <map>
#include <string>
#include <vector>

namespace lumora::platform::linux_backend::testing {

/// A web server on this thread's main loop: pages by path, some of which misbehave.
class PageServer {
  public:
    enum class Protocol { http, httpsWithUnknownAuthority };

    explicit PageServer(Protocol protocol = Protocol::http);
    ~PageServer();
    PageServer(const PageServer&) = delete;
    PageServer& operator=(const PageServer&) = delete;

    void page(const std::string& path, const std::string& html);
    void redirect(const std::string& path, const std::string& target);
    void hang(const std::string& path); ///< takes the request and never answers
    void cutOff(const std::string& path, const std::string& html); ///< announces more than this, and closes

    /// The address of a path on the host of that name, which is this machine.
    [[nodiscard]] std::string url(const std::string& path, const std::string& host = "localhost") const;

    /// How often the path was asked for.
    [[nodiscard]] int requests(const std::string& path) const;

  private:
    struct Answer {
        enum class Kind { page, redirect, hang, cutOff } kind;
        std::string text;
    };

    static void answer(SoupServer* server, SoupServerMessage* message, const char* path, GHashTable* query,
                       gpointer self);

    SoupServer* server_;
    std::string scheme_;
    int port_ = 0;
    std::map<std::string, Answer> answers_;
    std::vector<std::string> log_;
};

/// A port of this machine on which nobody listens.
[[nodiscard]] int refusingPort();

} // namespace lumora::platform::linux_backend::testing
