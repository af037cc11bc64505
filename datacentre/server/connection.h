#pragma once

#include "authority/openssl_handles.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <mutex>
#include <set>
#include <string>

namespace datacentre {

class ConnectionRegistry;

/// One accepted connection: owns the socket and its TLS state and decides how they end. Lives on the thread that serves
/// it; only drop() is called from others.
class Connection {
  public:
    Connection(int socket, SSL_CTX* context, ConnectionRegistry& registry);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// The connection that a TLS object belongs to.
    [[nodiscard]] static Connection& of(const SSL* ssl);

    [[nodiscard]] bool handshake();
    [[nodiscard]] SSL* ssl() const { return ssl_.get(); }
    [[nodiscard]] int socket() const { return socket_; }

    /// Waits until the client has gone or the time is over; true when the client is still there then.
    [[nodiscard]] bool clientStays(std::chrono::milliseconds duration) const;
    void waitUntilClientLeaves() const;

    /// From here on nothing is written any more, and closing sends a TCP reset instead of an orderly end.
    void resetOnClose() { resetting_ = true; }
    [[nodiscard]] bool isResetting() const { return resetting_; }

    /// Ends the connection under the thread that serves it: its reads and waits return at once.
    void drop() const;

    /// Set while the client's hello is read.
    std::string serverName;

  private:
    void closeOrderly();

    int socket_;
    ConnectionRegistry& registry_;
    SslHandle ssl_;
    bool established_ = false;
    bool resetting_ = false;
};

/// The connections that are open at the moment, so that all can be dropped at once, and how many there have been.
class ConnectionRegistry {
  public:
    /// While closed, every connection that comes in is dropped at once: an accept may have been under way.
    void open();
    void closeAndDropAll();
    void dropAll();

    [[nodiscard]] std::size_t connections() const { return connections_; }
    [[nodiscard]] std::size_t handshakeFailures() const { return handshakeFailures_; }

  private:
    friend class Connection;
    void enter(const Connection& connection);
    void leave(const Connection& connection);

    std::mutex mutex_;
    bool closed_ = true;
    std::set<const Connection*> current_;
    std::atomic<std::size_t> connections_ = 0;
    std::atomic<std::size_t> handshakeFailures_ = 0;
};

} // namespace datacentre
