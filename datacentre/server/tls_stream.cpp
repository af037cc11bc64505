#include "server/tls_stream.h"

#include <openssl/err.h>

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <limits>

namespace datacentre {

namespace {

bool isReady(int socket, short events, std::chrono::milliseconds duration) {
    pollfd entry{socket, events, 0};
    return ::poll(&entry, 1, static_cast<int>(duration.count())) > 0;
}

int clipped(size_t size) {
    return static_cast<int>(std::min(size, static_cast<size_t>(std::numeric_limits<int>::max())));
}

void describe(int (*nameOf)(int, sockaddr*, socklen_t*), int socket, std::string& address, int& port) {
    sockaddr_storage storage{};
    socklen_t length = sizeof(storage);
    auto* const name = reinterpret_cast<sockaddr*>(&storage);
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> service{};
    if (nameOf(socket, name, &length) != 0 ||
        ::getnameinfo(name, length, host.data(), host.size(), service.data(), service.size(),
                      NI_NUMERICHOST | NI_NUMERICSERV) != 0)
        return;
    address = host.data();
    port = std::stoi(service.data());
}

} // namespace

bool TlsStream::waitForRequest(std::chrono::milliseconds duration) const {
    return SSL_pending(connection_.ssl()) > 0 || isReady(connection_.socket(), POLLIN, duration);
}

bool TlsStream::is_readable() const { return waitForRequest(patience_); }

bool TlsStream::is_writable() const {
    return !connection_.isResetting() && isReady(connection_.socket(), POLLOUT, patience_);
}

ssize_t TlsStream::read(char* data, size_t size) {
    if (connection_.isResetting() || !is_readable())
        return -1;
    ERR_clear_error();
    return SSL_read(connection_.ssl(), data, clipped(size));
}

ssize_t TlsStream::write(const char* data, size_t size) {
    if (!is_writable())
        return -1;
    ERR_clear_error();
    return SSL_write(connection_.ssl(), data, clipped(size));
}

void TlsStream::get_remote_ip_and_port(std::string& address, int& port) const {
    describe(&::getpeername, connection_.socket(), address, port);
}

void TlsStream::get_local_ip_and_port(std::string& address, int& port) const {
    describe(&::getsockname, connection_.socket(), address, port);
}

} // namespace datacentre
