#include "server/control_server.h"

#include "images/images.h"

#include <fmt/format.h>
#include <httplib.h>

#include <functional>
#include <stdexcept>
#include <utility>

namespace datacentre {

namespace {

// Every waiting drive call keeps a thread.
constexpr std::size_t kThreads = 64;
constexpr long long kDriveTimeout = 10000;
constexpr const char* kJsonType = "application/json";

std::string dump(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

void reply(httplib::Response& response, const Json& json, int status = 200) {
    response.status = status;
    response.set_content(dump(json), kJsonType);
}

Json parsed(const std::string& body) {
    if (body.empty())
        return Json::object();
    Json json = Json::parse(body, nullptr, false);
    if (json.is_discarded())
        throw std::invalid_argument("the body is not JSON");
    return json;
}

// Read here rather than by the library: that waits in vain when a client announces no body, and takes what command-line
// clients send by default for a form, of a few kilobytes at most.
std::string bodyOf(const httplib::Request& request, const httplib::ContentReader& content) {
    std::string body;
    if (request.has_header("Content-Length") || request.has_header("Transfer-Encoding"))
        content([&body](const char* data, std::size_t size) {
            body.append(data, size);
            return true;
        });
    return body;
}

Json orNull(const std::optional<std::string>& text) { return text ? Json(*text) : Json(nullptr); }

} // namespace

class ControlServer::Routes final : public httplib::Server {
  public:
    Routes(HttpsServer& https, Site& site, TlsManners& manners)
        : https_(https), site_(site), manners_(manners) {
        new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
        set_socket_options([](socket_t socket) {
            const int yes = 1;
            (void)::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
        });
        set_exception_handler(
            [](const httplib::Request&, httplib::Response& response, std::exception_ptr problem) {
                try {
                    std::rethrow_exception(std::move(problem));
                } catch (const std::invalid_argument& error) {
                    reply(response, {{"error", error.what()}}, 400);
                } catch (const std::exception& error) {
                    reply(response, {{"error", error.what()}}, 500);
                }
            });
        set_error_handler([](const httplib::Request&, httplib::Response& response) {
            if (response.body.empty())
                response.set_content(dump({{"error", "there is no such control"}}), kJsonType);
        });
        addReports();
        addMisbehaviour();
        addPageAndDrive();
        addListening();
    }

    int bind(const ListenAddress& address) {
        if (address.port == 0)
            return bind_to_any_port(address.host);
        return bind_to_port(address.host, address.port) ? address.port : -1;
    }

  private:
    using Change = std::function<void(const httplib::Request&, const Json& body)>;
    using Report = std::function<Json()>;

    void report(const std::string& path, Report make) {
        Get(path, [make = std::move(make)](const httplib::Request&, httplib::Response& response) {
            reply(response, make());
        });
    }

    // A change that answers {} when it was made.
    static HandlerWithContentReader changing(Change change) {
        return [change = std::move(change)](const httplib::Request& request, httplib::Response& response,
                                            const httplib::ContentReader& content) {
            change(request, parsed(bodyOf(request, content)));
            reply(response, Json::object());
        };
    }

    void addReports() {
        report("/status", [this] { return status(); });
        report("/requests", [this] { return site_.requests().toJson(); });
        Delete("/requests", changing([this](const auto&, const Json&) { site_.requests().clear(); }));
    }

    void addMisbehaviour() {
        Put("/answers", changing([this](const auto&, const Json& body) { site_.answers().override(body); }));
        report("/behaviour", [this] { return site_.behaviours().toJson(); });
        Put("/behaviour", changing([this](const auto& request, const Json& body) {
                if (!request.has_param("path"))
                    throw std::invalid_argument("the parameter \"path\" is missing");
                site_.behaviours().set(request.get_param_value("path"), Behaviour::fromJson(body));
            }));
        Delete("/behaviour", changing([this](const auto& request, const Json&) {
                   if (request.has_param("path"))
                       site_.behaviours().clear(request.get_param_value("path"));
                   else
                       site_.behaviours().clearAll();
               }));
        Put("/tls", changing([this](const auto&, const Json& body) { manners_.set(body); }));
        Delete("/tls", changing([this](const auto&, const Json&) { manners_.clear(); }));
    }

    void addPageAndDrive() {
        Put("/page", changing([this](const auto&, const Json& body) {
                site_.replacePage(JsonMembers(body, {"html"}).text("html").value_or(""));
            }));
        Delete("/page", changing([this](const auto&, const Json&) { site_.replacePage(std::nullopt); }));
        report("/drive/pages", [this] {
            const auto pages = site_.drive().pages();
            return Json{{"pages", pages.polling}, {"id", pages.id}, {"loads", pages.loads}};
        });
        Post("/drive", [this](const httplib::Request& request, httplib::Response& response,
                              const httplib::ContentReader& content) {
            drive(parsed(bodyOf(request, content)), response);
        });
    }

    void addListening() {
        Post("/stop", changing([this](const auto&, const Json&) { https_.stop(); }));
        Post("/start", changing([this](const auto&, const Json&) { https_.start(); }));
        Post("/disconnect", changing([this](const auto&, const Json&) { https_.dropConnections(); }));
    }

    void drive(const Json& json, httplib::Response& response) {
        if (!site_.isDriving())
            throw std::invalid_argument("the server runs without --drive");
        const JsonMembers members(json, {"script", "timeout_ms"});
        const auto script = members.text("script");
        if (!script)
            throw std::invalid_argument("\"script\" is missing");
        const std::chrono::milliseconds timeout(members.number("timeout_ms").value_or(kDriveTimeout));
        const auto outcome = site_.drive().run(*script, timeout);
        reply(response, {{"result", outcome.result}, {"error", orNull(outcome.error)}},
              outcome.timedOut ? 504 : 200);
    }

    [[nodiscard]] Json status() {
        return {{"listening", https_.isListening()},
                {"https", https_.address().text()},
                {"page", site_.pagePath()},
                {"drive", site_.isDriving()},
                {"connections", https_.connections().connections()},
                {"handshake_failures", https_.connections().handshakeFailures()},
                {"requests", site_.requests().size()},
                {"last_lumora_token", site_.lastToken()},
                {"agent_version", orNull(site_.images().version(kAgentImageName))},
                {"application_version", orNull(site_.images().version(kApplicationImageName))}};
    }

    HttpsServer& https_;
    Site& site_;
    TlsManners& manners_;
};

ControlServer::ControlServer(ListenAddress address, HttpsServer& https, Site& site, TlsManners& manners)
    : address_(std::move(address)), routes_(std::make_unique<Routes>(https, site, manners)) {}

ControlServer::~ControlServer() { stop(); }

void ControlServer::start() {
    const int port = routes_->bind(address_);
    if (port < 0)
        throw std::runtime_error(fmt::format("cannot listen on {}", address_.text()));
    address_.port = port;
    thread_ = std::thread([this] { routes_->listen_after_bind(); });
    while (!routes_->is_running())
        std::this_thread::yield();
}

void ControlServer::stop() {
    if (!thread_.joinable())
        return;
    routes_->stop();
    thread_.join();
}

} // namespace datacentre
