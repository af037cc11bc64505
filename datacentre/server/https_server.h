#pragma once

#include "server/behaviour.h"
#include "server/connection.h"
#include "server/exchange.h"
#include "server/listen_address.h"
#include "server/tls_context.h"

#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace datacentre {

/// What is to be done about one request: an answer and the manner of sending it.
struct Delivery {
    Answer answer;
    Behaviour behaviour;
};

/// The https side. The handler runs on the thread of its connection, many at a time; it may wait.
class HttpsServer {
  public:
    using Handler = std::function<Delivery(const ReceivedRequest&)>;

    HttpsServer(ListenAddress address, const TlsContext& context, Handler handler);
    ~HttpsServer();
    HttpsServer(const HttpsServer&) = delete;
    HttpsServer& operator=(const HttpsServer&) = delete;

    /// Listens; a port that was chosen freely at the first start stays for the later ones. Throws std::runtime_error
    /// when the address cannot be had. Nothing when it listens already.
    void start();
    /// Stops listening and drops every connection; returns when all their threads are idle.
    void stop();
    void dropConnections() { registry_.dropAll(); }

    [[nodiscard]] bool isListening() const;
    [[nodiscard]] ListenAddress address() const;
    [[nodiscard]] const ConnectionRegistry& connections() const { return registry_; }

  private:
    class Listener;

    mutable std::mutex mutex_; ///< start and stop may come from several control threads
    ListenAddress address_;
    const TlsContext& context_;
    Handler handler_;
    ConnectionRegistry registry_;
    std::unique_ptr<Listener> listener_;
    std::thread thread_;
};

} // namespace datacentre
