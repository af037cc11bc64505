#include "page_server.h"

#include <algorithm>

namespace lumora::contract {

namespace {

/// The path that a request's head asks for, without its query.
std::string pathOf(const std::string& head) {
    const std::size_t begin = head.find(' ') + 1;
    return head.substr(begin, head.find_first_of(" ?", begin) - begin);
}

} // namespace

PageServer::PageServer(Protocol protocol)
    : context_(protocol == Protocol::http ? nullptr : authority_.makeServerContext("DNS:localhost")),
      server_([this](Connection& connection, const std::string& head) { answer(connection, head); },
              context_.get()) {}

void PageServer::page(const std::string& path, const std::string& html) {
    const std::lock_guard lock(mutex_);
    answers_[path] = {Answer::Kind::page, html};
}

void PageServer::redirect(const std::string& path, const std::string& target) {
    const std::lock_guard lock(mutex_);
    answers_[path] = {Answer::Kind::redirect, target};
}

void PageServer::hang(const std::string& path) {
    const std::lock_guard lock(mutex_);
    answers_[path] = {Answer::Kind::hang, ""};
}

void PageServer::cutOff(const std::string& path, const std::string& html) {
    const std::lock_guard lock(mutex_);
    answers_[path] = {Answer::Kind::cutOff, html};
}

int PageServer::requests(const std::string& path) const {
    const std::lock_guard lock(mutex_);
    return static_cast<int>(std::count(log_.begin(), log_.end(), path));
}

PageServer::Answer PageServer::answerTo(const std::string& path) {
    const std::lock_guard lock(mutex_);
    log_.push_back(path);
    const auto found = answers_.find(path);
    return found == answers_.end() ? Answer{} : found->second;
}

void PageServer::answer(Connection& connection, const std::string& head) {
    // Not kept by anyone: the host's loads take from a cache what they find there.
    const std::string html = "Content-Type: text/html; charset=utf-8\r\nCache-Control: no-store\r\n";
    const Answer answer = answerTo(pathOf(head));
    switch (answer.kind) {
    case Answer::Kind::missing:
        connection.answer("", "404 Not Found");
        break;
    case Answer::Kind::page:
        connection.answer(answer.text, "200 OK", html);
        break;
    case Answer::Kind::redirect:
        connection.answer("", "302 Found", "Location: " + answer.text + "\r\n");
        break;
    case Answer::Kind::hang:
        connection.awaitClient();
        break;
    case Answer::Kind::cutOff:
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(2 * answer.text.size()) +
                        "\r\n" + html + "\r\n" + answer.text);
        connection.close();
        break;
    }
}

} // namespace lumora::contract
