#include "support/test_server.h"

#include <fmt/format.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace lumora::contract {

namespace {

sockaddr_in loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

int connectTo(int port) {
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in address = loopback(port);
    ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    return socket;
}

} // namespace

Connection::Connection(int socket, SSL_CTX* context) : socket_(socket) {
    if (context == nullptr)
        return;
    tls_.reset(SSL_new(context));
    SSL_set_fd(tls_.get(), socket);
    if (SSL_accept(tls_.get()) != 1)
        close();
}

long Connection::receive(char* bytes, int size) {
    return tls_ ? SSL_read(tls_.get(), bytes, size)
                : ::recv(socket_, bytes, static_cast<std::size_t>(size), 0);
}

void Connection::send(std::string_view text) {
    if (tls_)
        SSL_write(tls_.get(), text.data(), static_cast<int>(text.size()));
    else
        static_cast<void>(::send(socket_, text.data(), text.size(), 0)); // a client that left is no fault
}

void Connection::answer(std::string_view body, std::string_view status, std::string_view headers) {
    send(fmt::format("HTTP/1.1 {}\r\nContent-Length: {}\r\n{}\r\n{}", status, body.size(), headers, body));
}

void Connection::close() { ::shutdown(socket_, SHUT_RDWR); }

void Connection::reset() {
    const linger atOnce{1, 0};
    ::setsockopt(socket_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    // Its last descriptor's end resets the connection, and the number stays this object's.
    const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    ::dup2(nothing, socket_);
    ::close(nothing);
}

void Connection::awaitClient() {
    std::array<char, 256> ignored{};
    while (receive(ignored.data(), ignored.size()) > 0)
        ;
}

std::string Connection::readHead() {
    for (;;) {
        if (const std::size_t end = received_.find("\r\n\r\n"); end != std::string::npos) {
            std::string head = received_.substr(0, end + 4);
            received_.erase(0, end + 4);
            return head;
        }
        std::array<char, 4096> chunk{};
        const long count = receive(chunk.data(), static_cast<int>(chunk.size()));
        if (count <= 0)
            return {};
        received_.append(chunk.data(), static_cast<std::size_t>(count));
    }
}

TestServer::TestServer(Handler handler, SSL_CTX* context) : handler_(std::move(handler)), context_(context) {
    std::signal(SIGPIPE, SIG_IGN);
    listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = loopback(0);
    socklen_t length = sizeof address;
    if (::bind(listener_, reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
        ::listen(listener_, 64) != 0 ||
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        throw std::runtime_error("no test server");
    port_ = ntohs(address.sin_port);
    acceptor_ = std::thread([this] {
        for (;;) {
            const int socket = ::accept(listener_, nullptr, nullptr);
            if (socket < 0 || stopping_) {
                ::close(socket);
                return;
            }
            const std::lock_guard lock(mutex_);
            sockets_.push_back(socket);
            threads_.emplace_back([this, socket] { serve(socket); });
        }
    });
}

TestServer::~TestServer() {
    stopping_ = true;
    const int last = connectTo(port_); // not every system ends an accept whose socket is shut down
    acceptor_.join();
    ::close(last);
    ::close(listener_);
    for (const int socket : sockets_)
        ::shutdown(socket, SHUT_RDWR);
    for (std::thread& thread : threads_)
        thread.join();
    for (const int socket : sockets_)
        ::close(socket);
}

void TestServer::serve(int socket) {
    Connection connection(socket, context_);
    for (std::string head = connection.readHead(); !head.empty(); head = connection.readHead()) {
        ++requests_;
        handler_(connection, head);
    }
    connection.close();
}

int TestServer::connections() const {
    const std::lock_guard lock(mutex_);
    return static_cast<int>(sockets_.size());
}

std::string TestServer::url(const std::string& path, const std::string& host) const {
    return fmt::format("{}://{}:{}{}", context_ == nullptr ? "http" : "https", host, port_, path);
}

} // namespace lumora::contract
