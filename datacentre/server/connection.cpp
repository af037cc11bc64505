#include "server/connection.h"

#include <openssl/err.h>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace datacentre {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// The other side has sent its last byte, whatever of it has not been read yet. Not every system has a name of its own for it.
#ifdef POLLRDHUP
constexpr short kHasLeft = POLLRDHUP;
#else
constexpr short kHasLeft = POLLHUP;
#endif

constexpr milliseconds kForEver{-1};
// How long an orderly close waits for the client to read what it was sent.
constexpr milliseconds kLastWords{1000};

// Waits for events on the socket; true when one came, a hang-up included.
bool waitFor(int socket, short events, milliseconds duration) {
    const auto deadline = steady_clock::now() + duration;
    for (;;) {
        pollfd entry{socket, events, 0};
        const auto left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now());
        const int wait =
            duration == kForEver ? -1 : static_cast<int>(std::max(left, milliseconds(0)).count());
        const int ready = ::poll(&entry, 1, wait);
        if (ready >= 0 || errno != EINTR)
            return ready != 0;
    }
}

} // namespace

Connection::Connection(int socket, SSL_CTX* context, ConnectionRegistry& registry)
    : socket_(socket), registry_(registry), ssl_(SSL_new(context)) {
    registry_.enter(*this);
    if (ssl_) {
        SSL_set_app_data(ssl_.get(), this);
        SSL_set_fd(ssl_.get(), socket_);
    }
}

Connection::~Connection() {
    if (resetting_) {
        // Without a lingering close the kernel throws away what is unsent and sends a reset.
        const linger atOnce{.l_onoff = 1, .l_linger = 0};
        (void)::setsockopt(socket_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof(atOnce));
    } else {
        closeOrderly();
    }
    registry_.leave(*this);
    ::close(socket_);
}

Connection& Connection::of(const SSL* ssl) { return *static_cast<Connection*>(SSL_get_app_data(ssl)); }

bool Connection::handshake() {
    established_ = ssl_ && SSL_accept(ssl_.get()) == 1;
    if (!established_)
        ++registry_.handshakeFailures_;
    ERR_clear_error();
    return established_;
}

bool Connection::clientStays(milliseconds duration) const { return !waitFor(socket_, kHasLeft, duration); }

void Connection::waitUntilClientLeaves() const { (void)waitFor(socket_, kHasLeft, kForEver); }

void Connection::drop() const { ::shutdown(socket_, SHUT_RDWR); }

void Connection::closeOrderly() {
    if (established_)
        (void)SSL_shutdown(ssl_.get());
    ERR_clear_error();
    ::shutdown(socket_, SHUT_WR);
    // Closing over unread bytes would make the kernel send a reset, which may overtake the answer's end.
    std::array<char, 4096> ignored{};
    const auto deadline = steady_clock::now() + kLastWords;
    while (steady_clock::now() < deadline && waitFor(socket_, POLLIN, kLastWords))
        if (::recv(socket_, ignored.data(), ignored.size(), MSG_DONTWAIT) <= 0)
            break;
}

void ConnectionRegistry::open() {
    const std::lock_guard lock(mutex_);
    closed_ = false;
}

void ConnectionRegistry::closeAndDropAll() {
    {
        const std::lock_guard lock(mutex_);
        closed_ = true;
    }
    dropAll();
}

void ConnectionRegistry::dropAll() {
    const std::lock_guard lock(mutex_);
    for (const auto* connection : current_)
        connection->drop();
}

void ConnectionRegistry::enter(const Connection& connection) {
    const std::lock_guard lock(mutex_);
    ++connections_;
    current_.insert(&connection);
    if (closed_)
        connection.drop();
}

void ConnectionRegistry::leave(const Connection& connection) {
    const std::lock_guard lock(mutex_);
    current_.erase(&connection);
}

} // namespace datacentre
