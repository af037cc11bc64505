#include "server/https_server.h"

#include "server/tls_stream.h"

#include <fmt/format.h>
#include <httplib.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <stdexcept>
#include <string_view>

namespace datacentre {

namespace {

using std::chrono::milliseconds;

// A hanging request keeps its thread, so there are many more than any test needs at once.
constexpr std::size_t kThreads = 128;
constexpr std::chrono::seconds kKeepAlive{30};
constexpr milliseconds kPatience{10000};
constexpr std::size_t kRequestsPerConnection = 1000;
// The library puts these among the headers, as if they had been sent.
constexpr std::array<std::string_view, 4> kNotSent = {"LOCAL_ADDR", "LOCAL_PORT", "REMOTE_ADDR",
                                                      "REMOTE_PORT"};
constexpr std::size_t kLargestBody = 16UL * 1024 * 1024;

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

ReceivedRequest received(const httplib::Request& request) {
    auto& connection = Connection::of(request.ssl);
    ReceivedRequest result;
    result.method = request.method;
    result.target = request.target;
    const auto mark = request.target.find('?');
    result.path = request.target.substr(0, mark);
    if (mark != std::string::npos)
        result.query = request.target.substr(mark + 1);
    result.host = request.get_header_value("Host");
    for (const auto& [name, value] : request.headers)
        if (std::find(kNotSent.begin(), kNotSent.end(), name) == kNotSent.end())
            result.headers.emplace_back(lowerCase(name), value);
    result.body = request.body;
    result.tlsVersion = SSL_get_version(request.ssl);
    result.serverName = connection.serverName;
    result.remote = fmt::format("{}:{}", request.remote_addr, request.remote_port);
    result.localPort = request.local_port;
    result.clientIsThere = [&connection] { return connection.clientStays(milliseconds(0)); };
    return result;
}

// Hands the body to the library piece by piece, slowly or only in part as the behaviour asks.
void provideBody(Connection& connection, const Behaviour& behaviour, std::string body,
                 httplib::Response& response, const std::string& contentType) {
    const std::size_t announced = body.size();
    const std::size_t sent = std::min(behaviour.truncateAt.value_or(announced), announced);
    const std::size_t piece = behaviour.chunkDelay.count() > 0 ? behaviour.chunkSize : announced;
    const auto text = std::make_shared<const std::string>(std::move(body));
    response.set_content_provider(announced, contentType,
                                  [&connection, behaviour, text, sent, piece](std::size_t offset, std::size_t,
                                                                              httplib::DataSink& sink) {
                                      if (offset >= sent) { // reached only when less is sent than announced
                                          if (behaviour.reset)
                                              connection.resetOnClose();
                                          return false;
                                      }
                                      if (offset > 0 && !connection.clientStays(behaviour.chunkDelay))
                                          return false;
                                      return sink.write(text->data() + offset,
                                                        std::min(piece, sent - offset));
                                  });
}

void deliver(Connection& connection, Delivery delivery, httplib::Response& response) {
    const Behaviour& behaviour = delivery.behaviour;
    if (behaviour.delay.count() > 0 && !connection.clientStays(behaviour.delay))
        return;
    if (behaviour.hang) {
        connection.waitUntilClientLeaves();
        connection.resetOnClose(); // nobody is left to whom an answer could go
        return;
    }
    if (behaviour.reset && !behaviour.truncateAt) {
        connection.resetOnClose();
        return;
    }
    Answer& answer = delivery.answer;
    response.status = answer.status;
    // A header that a behaviour brings comes last and takes the place of the answer's own of that name.
    for (const auto& [name, value] : answer.headers) {
        response.headers.erase(name);
        response.headers.emplace(name, value);
    }
    response.headers.emplace("Accept-Ranges", "none");
    if (!answer.body.empty())
        provideBody(connection, behaviour, std::move(answer.body), response, answer.contentType);
}

} // namespace

// One period of listening. The library accepts, parses and writes; the connection's beginning and end are ours.
class HttpsServer::Listener final : public httplib::Server {
  public:
    Listener(SSL_CTX* context, ConnectionRegistry& registry, const HttpsServer::Handler& handler)
        : context_(context), registry_(registry) {
        new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
        set_payload_max_length(kLargestBody);
        set_keep_alive_max_count(kRequestsPerConnection);
        set_keep_alive_timeout(kKeepAlive.count());
        // The library's own choice, SO_REUSEPORT, would let two servers share a port without a word.
        set_socket_options([](socket_t socket) {
            const int yes = 1;
            (void)::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
        });
        const auto serve = [&handler](const httplib::Request& request, httplib::Response& response) {
            deliver(Connection::of(request.ssl), handler(received(request)), response);
        };
        // Also matches a decoded line feed, which the dot does not.
        const std::string everything = R"([\s\S]*)";
        Get(everything, serve);
        Post(everything, serve);
        Put(everything, serve);
        Delete(everything, serve);
        Patch(everything, serve);
        Options(everything, serve);
    }

    // The port that is listened on.
    int bind(const ListenAddress& address) {
        if (address.port == 0)
            return bind_to_any_port(address.host);
        return bind_to_port(address.host, address.port) ? address.port : -1;
    }

  private:
    bool process_and_close_socket(socket_t socket) override {
        Connection connection(socket, context_, registry_);
        if (!connection.handshake())
            return false;
        TlsStream stream(connection, kPatience);
        const auto setUp = [&connection](httplib::Request& request) {
            request.ssl = connection.ssl();
            // The library would cut any answer to the asked range, an error's text too.
            request.ranges.clear();
        };
        for (auto left = kRequestsPerConnection; left > 0 && svr_sock_ != INVALID_SOCKET; --left) {
            bool closed = false;
            if (!stream.waitForRequest(kKeepAlive) || !process_request(stream, left == 1, closed, setUp))
                break;
            if (closed || connection.isResetting()) // the library does not notice that it could not write
                break;
        }
        return true;
    }

    SSL_CTX* context_;
    ConnectionRegistry& registry_;
};

HttpsServer::HttpsServer(ListenAddress address, const TlsContext& context, Handler handler)
    : address_(std::move(address)), context_(context), handler_(std::move(handler)) {}

HttpsServer::~HttpsServer() { stop(); }

void HttpsServer::start() {
    const std::lock_guard lock(mutex_);
    if (listener_)
        return;
    auto listener = std::make_unique<Listener>(context_.get(), registry_, handler_);
    const int port = listener->bind(address_);
    if (port < 0)
        throw std::runtime_error(fmt::format("cannot listen on {}", address_.text()));
    address_.port = port;
    registry_.open();
    listener_ = std::move(listener);
    thread_ = std::thread([server = listener_.get()] { server->listen_after_bind(); });
    // Connections queue from the bind on, but stop() has no effect before the accept loop runs.
    while (!listener_->is_running())
        std::this_thread::yield();
}

void HttpsServer::stop() {
    const std::lock_guard lock(mutex_);
    if (!listener_)
        return;
    registry_.closeAndDropAll();
    listener_->stop();
    thread_.join();
    listener_.reset();
}

bool HttpsServer::isListening() const {
    const std::lock_guard lock(mutex_);
    return listener_ != nullptr;
}

ListenAddress HttpsServer::address() const {
    const std::lock_guard lock(mutex_);
    return address_;
}

} // namespace datacentre
