#include "server/behaviour.h"

#include <fmt/format.h>

#include <stdexcept>

namespace datacentre {

namespace {

constexpr int kLowestStatus = 200; // 1xx are no answers
constexpr int kHighestStatus = 599;

bool isSuccess(int status) { return status / 100 == 2; }
bool hasNoBody(int status) { return status == 204 || status == 304; }

HeaderList headersFrom(const Json& json) {
    HeaderList headers;
    if (!json.is_object())
        throw std::invalid_argument("\"headers\" is an object");
    for (const auto& [name, value] : json.items()) {
        if (!value.is_string())
            throw std::invalid_argument("a header is a text");
        headers.emplace_back(name, value.get<std::string>());
    }
    return headers;
}

} // namespace

Behaviour Behaviour::fromJson(const Json& json) {
    const JsonMembers members(json,
                              {"status", "body", "content_type", "headers", "delay_ms", "truncate_at",
                               "reset", "hang", "chunk_delay_ms", "chunk_size", "times", "except_agent"});
    Behaviour behaviour;
    if (const auto status = members.number("status")) {
        if (*status < kLowestStatus || *status > kHighestStatus)
            throw std::invalid_argument("\"status\" is a number from 200 to 599");
        behaviour.status = static_cast<int>(*status);
    }
    behaviour.body = members.text("body");
    behaviour.contentType = members.text("content_type");
    if (const Json* headers = members.member("headers"))
        behaviour.headers = headersFrom(*headers);
    behaviour.delay = members.milliseconds("delay_ms");
    if (const auto bytes = members.number("truncate_at"))
        behaviour.truncateAt = static_cast<std::size_t>(*bytes);
    behaviour.reset = members.flag("reset");
    behaviour.hang = members.flag("hang");
    behaviour.chunkDelay = members.milliseconds("chunk_delay_ms");
    if (const auto size = members.number("chunk_size"); size && *size > 0)
        behaviour.chunkSize = static_cast<std::size_t>(*size);
    behaviour.times = members.number("times");
    behaviour.exceptAgent = members.text("except_agent").value_or("");
    return behaviour;
}

Json Behaviour::toJson() const {
    Json json = Json::object();
    if (status)
        json["status"] = *status;
    if (body)
        json["body"] = *body;
    if (contentType)
        json["content_type"] = *contentType;
    for (const auto& [name, value] : headers)
        json["headers"][name] = value;
    if (delay.count() > 0)
        json["delay_ms"] = delay.count();
    if (truncateAt)
        json["truncate_at"] = *truncateAt;
    if (reset)
        json["reset"] = true;
    if (hang)
        json["hang"] = true;
    if (chunkDelay.count() > 0) {
        json["chunk_delay_ms"] = chunkDelay.count();
        json["chunk_size"] = chunkSize;
    }
    if (times)
        json["times"] = *times;
    if (!exceptAgent.empty())
        json["except_agent"] = exceptAgent;
    return json;
}

void Behaviour::replaceIn(Answer& answer) const {
    if (status) {
        answer.status = *status;
        if (hasNoBody(*status)) {
            answer.body.clear();
            answer.contentType.clear();
        } else if (!isSuccess(*status)) {
            answer.body = fmt::format("The data centre answers {} here.\n", *status);
            answer.contentType = "text/plain; charset=utf-8";
        }
    }
    if (body)
        answer.body = *body;
    if (contentType)
        answer.contentType = *contentType;
    answer.headers.insert(answer.headers.end(), headers.begin(), headers.end());
}

void BehaviourTable::set(const std::string& path, Behaviour behaviour) {
    const std::lock_guard lock(mutex_);
    behaviours_[path] = std::move(behaviour);
}

void BehaviourTable::clear(const std::string& path) {
    const std::lock_guard lock(mutex_);
    behaviours_.erase(path);
}

void BehaviourTable::clearAll() {
    const std::lock_guard lock(mutex_);
    behaviours_.clear();
}

std::optional<Behaviour> BehaviourTable::take(const std::string& path, const std::string& agent) {
    const std::lock_guard lock(mutex_);
    auto found = behaviours_.find(path);
    if (found == behaviours_.end())
        found = behaviours_.find(kEveryPath);
    if (found == behaviours_.end() || (!agent.empty() && agent == found->second.exceptAgent))
        return std::nullopt;
    Behaviour behaviour = found->second;
    if (found->second.times && --*found->second.times <= 0)
        behaviours_.erase(found);
    if (behaviour.times && *behaviour.times <= 0)
        return std::nullopt;
    return behaviour;
}

Json BehaviourTable::toJson() const {
    const std::lock_guard lock(mutex_);
    Json json = Json::object();
    for (const auto& [path, behaviour] : behaviours_)
        json[path] = behaviour.toJson();
    return json;
}

} // namespace datacentre
