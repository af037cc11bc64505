#include "server/request_log.h"

#include "server/timestamp.h"

#include <fmt/format.h>

#include <unistd.h>

namespace datacentre {

namespace {

// One write a line: several threads share the stream and a line must not be torn.
void printLine(const std::string& line) {
    const std::string text = line + '\n';
    // A lost line of the trace changes nothing that anyone waits for.
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, text.data(), text.size());
}

Json headersOf(const ReceivedRequest& request) {
    Json headers = Json::object();
    for (const auto& [name, value] : request.headers) {
        if (headers.contains(name))
            headers[name] = headers[name].get<std::string>() + ", " + value;
        else
            headers[name] = value;
    }
    return headers;
}

} // namespace

void RequestLog::add(const ReceivedRequest& request) {
    const std::lock_guard lock(mutex_);
    const std::string time = timestamp();
    ++lastSequence_;
    printLine(fmt::format("{} {} {} {} {} {}", time, lastSequence_, request.tlsVersion, request.method,
                          request.host, request.target));
    entries_.push_back(Json{{"sequence", lastSequence_},
                            {"time", time},
                            {"host", request.host},
                            {"method", request.method},
                            {"path", request.path},
                            {"query", request.query},
                            {"target", request.target},
                            {"headers", headersOf(request)},
                            {"tls", request.tlsVersion},
                            {"sni", request.serverName},
                            {"local_port", request.localPort},
                            {"remote", request.remote}});
}

void RequestLog::clear() {
    const std::lock_guard lock(mutex_);
    entries_ = Json::array();
}

Json RequestLog::toJson() const {
    const std::lock_guard lock(mutex_);
    return entries_;
}

std::size_t RequestLog::size() const {
    const std::lock_guard lock(mutex_);
    return entries_.size();
}

} // namespace datacentre
