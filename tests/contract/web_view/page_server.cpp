#include "page_server.h"

#include "platform/linux/glib_handles.h"

#include <algorithm>
#include <stdexcept>

namespace lumora::platform::linux_backend::testing {

namespace {

void expectNone(GError* error) {
    if (const ErrorPointer failure{error})
        throw std::runtime_error(failure->message);
}

int portOf(SoupServer* server) {
    GSList* addresses = soup_server_get_uris(server);
    const int port = g_uri_get_port(static_cast<GUri*>(addresses->data));
    g_slist_free_full(addresses, [](gpointer uri) { g_uri_unref(static_cast<GUri*>(uri)); });
    return port;
}

void answerHalf(SoupServerMessage* message, const std::string& html) {
    const std::string text =
        "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: " + std::to_string(2 * html.size()) +
        "\r\n\r\n" + html;
    const auto connection = ObjectRef<GIOStream>::adopt(soup_server_message_steal_connection(message));
    GError* error = nullptr;
    g_output_stream_write_all(g_io_stream_get_output_stream(connection.get()), text.data(), text.size(),
                              nullptr, nullptr, &error);
    expectNone(error);
    g_io_stream_close(connection.get(), nullptr, nullptr);
}

} // namespace

PageServer::PageServer(Protocol protocol)
    : server_(soup_server_new(nullptr, nullptr)), scheme_(protocol == Protocol::http ? "http" : "https") {
    GError* error = nullptr;
    auto options = SOUP_SERVER_LISTEN_IPV4_ONLY;
    if (protocol != Protocol::http) {
        const auto certificate = ObjectRef<GTlsCertificate>::adopt(
            g_tls_certificate_new_from_files(LUMORA_TEST_CERTIFICATE, LUMORA_TEST_CERTIFICATE_KEY, &error));
        expectNone(error);
        soup_server_set_tls_certificate(server_, certificate.get());
        options = static_cast<SoupServerListenOptions>(options | SOUP_SERVER_LISTEN_HTTPS);
    }
    soup_server_listen_local(server_, 0, options, &error);
    expectNone(error);
    port_ = portOf(server_);
    soup_server_add_handler(server_, nullptr, &PageServer::answer, this, nullptr);
}

PageServer::~PageServer() {
    soup_server_disconnect(server_);
    g_object_unref(server_);
}

void PageServer::page(const std::string& path, const std::string& html) {
    answers_[path] = {Answer::Kind::page, html};
}

void PageServer::redirect(const std::string& path, const std::string& target) {
    answers_[path] = {Answer::Kind::redirect, target};
}

void PageServer::hang(const std::string& path) { answers_[path] = {Answer::Kind::hang, ""}; }

void PageServer::cutOff(const std::string& path, const std::string& html) {
    answers_[path] = {Answer::Kind::cutOff, html};
}

std::string PageServer::url(const std::string& path, const std::string& host) const {
    return scheme_ + "://" + host + ":" + std::to_string(port_) + path;
}

int PageServer::requests(const std::string& path) const {
    return static_cast<int>(std::count(log_.begin(), log_.end(), path));
}

void PageServer::answer(SoupServer*, SoupServerMessage* message, const char* path, GHashTable*,
                        gpointer data) {
    auto* self = static_cast<PageServer*>(data);
    self->log_.emplace_back(path);
    const auto found = self->answers_.find(path);
    if (found == self->answers_.end()) {
        soup_server_message_set_status(message, SOUP_STATUS_NOT_FOUND, nullptr);
        return;
    }
    const Answer& answer = found->second;
    switch (answer.kind) {
    case Answer::Kind::page:
        soup_server_message_set_status(message, SOUP_STATUS_OK, nullptr);
        soup_server_message_set_response(message, "text/html; charset=utf-8", SOUP_MEMORY_COPY,
                                         answer.text.data(), answer.text.size());
        break;
    case Answer::Kind::redirect:
        soup_server_message_set_redirect(message, SOUP_STATUS_FOUND, answer.text.c_str());
        break;
    case Answer::Kind::hang:
        soup_server_message_pause(message);
        break;
    case Answer::Kind::cutOff:
        answerHalf(message, answer.text);
        break;
    }
}

int refusingPort() {
    GError* error = nullptr;
    const auto listener = ObjectRef<GSocketListener>::adopt(g_socket_listener_new());
    const auto port = g_socket_listener_add_any_inet_port(listener.get(), nullptr, &error);
    expectNone(error);
    g_socket_listener_close(listener.get());
    return port;
}

} // namespace lumora::platform::linux_backend::testing
