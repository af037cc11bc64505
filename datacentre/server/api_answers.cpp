#include "server/api_answers.h"

#include "images/image_version.h"
#include "images/images.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace datacentre {

namespace {

constexpr const char* kCdnHost = "cdn.ovratessel.example";
constexpr const char* kJsonType = "application/json";

} // namespace

const std::array<ApiAnswers::Question, 3> ApiAnswers::kQuestions = {{
    {"/api/v2/agent/check_update", "agent", &ApiAnswers::agentCheck},
    {"/api/v1/customer_plugin/check_update", "application", &ApiAnswers::applicationCheck},
    {"/api/v2/service_domain", "service_domain", &ApiAnswers::serviceDomain},
}};

void ApiAnswers::override(const Json& overrides) {
    if (!overrides.is_object())
        throw std::invalid_argument("a JSON object is expected");
    for (const auto& [name, body] : overrides.items())
        if (std::none_of(kQuestions.begin(), kQuestions.end(),
                         [&wanted = name](const auto& q) { return q.name == wanted; }))
            throw std::invalid_argument(fmt::format("there is no answer \"{}\"", name));
    const std::lock_guard lock(mutex_);
    for (const auto& [name, body] : overrides.items()) {
        if (body.is_null())
            overrides_.erase(name);
        else
            overrides_.insert_or_assign(name, body.is_string() ? body.get<std::string>() : body.dump());
    }
}

std::optional<Answer> ApiAnswers::answer(const ReceivedRequest& request) const {
    const auto question = std::find_if(kQuestions.begin(), kQuestions.end(), [&](const Question& candidate) {
        return candidate.path == request.path;
    });
    if (question == kQuestions.end())
        return std::nullopt;
    {
        const std::lock_guard lock(mutex_);
        const auto replaced = overrides_.find(question->name);
        if (replaced != overrides_.end())
            return Answer{200, kJsonType, replaced->second};
    }
    const Json body = (this->*question->build)(request);
    return Answer{200, kJsonType, body.dump(-1, ' ', false, Json::error_handler_t::replace)};
}

Json ApiAnswers::agentCheck(const ReceivedRequest& request) const {
    const auto version = images_.version(kAgentImageName);
    Json agent = {{"update_needed", version && isOlder(request.parameter("agent_version"), *version)},
                  {"download_url", ""},
                  {"fallback_url", ""}};
    if (version) {
        agent["download_url"] = fmt::format("https://{}/cdn/{}", kCdnHost, kAgentImageName);
        agent["fallback_url"] = fmt::format("https://{}/agent/{}", request.host, kAgentImageName);
        agent["version"] = *version;
    }
    return {{"representation", {{"AGENT", agent}}}};
}

// Without an address: the application then takes its default one should a test only switch "update" to true.
Json ApiAnswers::applicationCheck(const ReceivedRequest&) const {
    return {{"representation", {{"update", false}}}};
}

Json ApiAnswers::serviceDomain(const ReceivedRequest&) const {
    return {{"representation", {{"service_domain", ""}}}};
}

} // namespace datacentre
