#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace lumora::contract {

/// Listens on a free port of this machine, and never says a word: a handshake with it hangs.
class SilentListener {
  public:
    SilentListener() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        auto* place = reinterpret_cast<sockaddr*>(&address);
        if (::bind(socket_, place, length) != 0 || ::listen(socket_, 16) != 0 ||
            ::getsockname(socket_, place, &length) != 0)
            throw std::runtime_error("no port to listen on");
        port_ = ntohs(address.sin_port);
    }
    ~SilentListener() { ::close(socket_); }
    SilentListener(const SilentListener&) = delete;
    SilentListener& operator=(const SilentListener&) = delete;

    [[nodiscard]] int port() const { return port_; }

  private:
    const int socket_ = ::socket(AF_INET, SOCK_STREAM, 0);
    int port_ = 0;
};

/// A port of this machine on which nobody listens.
[[nodiscard]] inline int refusingPort() { return SilentListener().port(); }

} // namespace lumora::contract
