#include "webhost/join_url.h"

#include "config/session_details.h"
#include "support/characters.h"

namespace lumora {

namespace {

bool hasText(const std::optional<std::string>& value) { return value && !trimmed(*value).empty(); }

} // namespace

bool isWebServerNameAndPathKnown() {
    const auto& session = SessionDetails::getInstance();
    return hasText(session.webServerName()) && hasText(session.pathForLumora());
}

std::string joinUrl() {
    const auto& session = SessionDetails::getInstance();
    std::string url =
        "https://" + session.webServerName().value_or("") + "/" + session.pathForLumora().value_or("");
    if (const auto token = session.lumoraToken(); token && !token->empty())
        url += "?lumora_token=" + *token;
    return url;
}

platform::PageRequest joinRequest(std::string url) {
    return {std::move(url), platform::HttpCachePolicy::returnCacheDataElseLoad, std::chrono::seconds(10)};
}

} // namespace lumora
