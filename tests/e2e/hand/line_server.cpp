#include "line_server.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstring>
#include <string_view>

namespace lumora::hand {

namespace {

constexpr int kWaiting = 16;

// An asker that has left is no reason for the application to end.
void blockBrokenPipe() {
    sigset_t set{};
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

// Where that signal is the process's, whatever this thread blocks. On both ends of an accept: a connection refuses it
// once its asker has left, and has it then from the socket that it comes from.
void sendNoSignal([[maybe_unused]] int socket) {
#ifdef SO_NOSIGPIPE
    const int on = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof(on));
#endif
}

int listenAt(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof(address.sun_path))
        return -1;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    ::unlink(path.c_str());
    const int server = ::socket(AF_UNIX, SOCK_STREAM, 0);
    if (server < 0)
        return -1;
    if (::bind(server, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
        ::listen(server, kWaiting) == 0)
        return server;
    ::close(server);
    return -1;
}

std::string readLine(int connection) {
    std::string line;
    std::array<char, 4096> piece{};
    while (line.find('\n') == std::string::npos) {
        const auto count = ::recv(connection, piece.data(), piece.size(), 0);
        if (count <= 0)
            break;
        line.append(piece.data(), static_cast<std::size_t>(count));
    }
    return line.substr(0, line.find('\n'));
}

void writeAll(int connection, std::string_view text) {
    while (!text.empty()) {
        const auto count = ::send(connection, text.data(), text.size(), 0);
        if (count <= 0)
            return; // whoever asked has left
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

} // namespace

void serveLines(const std::string& path,
                const std::function<void(const std::string&, const Answer&)>& handle) {
    const int server = listenAt(path);
    if (server < 0)
        return;
    blockBrokenPipe();
    sendNoSignal(server);
    for (;;) {
        int connection = ::accept(server, nullptr, nullptr);
        if (connection < 0)
            continue;
        sendNoSignal(connection);
        handle(readLine(connection), [&connection](const std::string& text) {
            writeAll(connection, text);
            ::close(connection);
            connection = -1;
        });
        if (connection >= 0)
            ::close(connection);
    }
}

} // namespace lumora::hand
