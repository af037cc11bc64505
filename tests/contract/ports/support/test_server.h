#pragma once

#include "support/test_authority.h"

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace lumora::contract {

/// One accepted connection, at the mercy of the test.
class Connection {
  public:
    Connection(int socket, SSL_CTX* context);

    void send(std::string_view text);

    /// A whole answer; the connection stays open for the next request.
    void answer(std::string_view body, std::string_view status = "200 OK", std::string_view headers = "");

    /// Ends the TCP connection without ending TLS first.
    void close();

    /// Breaks the TCP connection: the client sees a reset.
    void reset();

    /// Returns when the client has gone.
    void awaitClient();

    /// The next request's head; empty when the client has gone.
    [[nodiscard]] std::string readHead();

  private:
    [[nodiscard]] long receive(char* bytes, int size);

    int socket_;
    OpenSslPointer<SSL> tls_;
    std::string received_;
};

/// A server on a free port of 127.0.0.1, one thread a connection.
class TestServer {
  public:
    using Handler = std::function<void(Connection&, const std::string& head)>;

    explicit TestServer(Handler handler, SSL_CTX* context = nullptr);
    ~TestServer();
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;

    [[nodiscard]] int port() const { return port_; }

    /// The address of a path, by the scheme that the server speaks.
    [[nodiscard]] std::string url(const std::string& path = "/", const std::string& host = "localhost") const;

    /// How many requests came so far.
    [[nodiscard]] int requests() const { return requests_; }

    /// How many connections they came over.
    [[nodiscard]] int connections() const;

  private:
    void serve(int socket);

    const Handler handler_;
    SSL_CTX* const context_;
    int listener_ = -1;
    int port_ = 0;
    std::atomic<bool> stopping_ = false;
    std::atomic<int> requests_ = 0;
    mutable std::mutex mutex_;
    std::vector<int> sockets_;
    std::vector<std::thread> threads_;
    std::thread acceptor_;
};

} // namespace lumora::contract
