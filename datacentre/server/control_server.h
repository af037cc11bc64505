#pragma once

#include "server/https_server.h"
#include "server/listen_address.h"
#include "server/site.h"
#include "server/tls_manners.h"

#include <memory>
#include <thread>

namespace datacentre {

/// The control interface that README.md describes: plain http for tests and the demo. It is meant for the loopback
/// address; whoever reaches it may do anything to the data centre.
class ControlServer {
  public:
    ControlServer(ListenAddress address, HttpsServer& https, Site& site, TlsManners& manners);
    ~ControlServer();
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

    void start(); ///< throws std::runtime_error
    void stop();
    [[nodiscard]] const ListenAddress& address() const { return address_; }

  private:
    class Routes;

    ListenAddress address_;
    std::unique_ptr<Routes> routes_;
    std::thread thread_;
};

} // namespace datacentre
