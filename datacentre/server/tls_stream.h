#pragma once

#include "server/connection.h"

#include <httplib.h>

#include <chrono>

namespace datacentre {

/// The http library's view of a connection: TLS over a blocking socket, with a limit on every wait.
class TlsStream final : public httplib::Stream {
  public:
    TlsStream(Connection& connection, std::chrono::milliseconds patience)
        : connection_(connection), patience_(patience) {}

    /// Waits for the next request; false when none comes in time.
    [[nodiscard]] bool waitForRequest(std::chrono::milliseconds duration) const;

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char* data, size_t size) override;
    ssize_t write(const char* data, size_t size) override;
    void get_remote_ip_and_port(std::string& address, int& port) const override;
    void get_local_ip_and_port(std::string& address, int& port) const override;
    socket_t socket() const override { return connection_.socket(); }

  private:
    Connection& connection_;
    std::chrono::milliseconds patience_;
};

} // namespace datacentre
