#include "api/update_answers.h"

#include "config/session_details.h"
#include "selfupdate/ovra_lumora_updater.h"
#include "support/json.h"
#include "support/log.h"
#include "support/rendering.h"

#include <array>
#include <span>

namespace lumora {

namespace {

/// One member of an answer, and what it does to the session record.
struct MemberEffect {
    std::string_view name;
    void (*apply)(const Json& value, SessionDetails& session);
};

std::optional<bool> flagOf(const Json& value) {
    if (value.is_boolean() || value.is_number() || value.is_string())
        return booleanConversion(value);
    return std::nullopt;
}

/// The server may send an image's name with its extension doubled.
std::string withSingleExtension(std::string url) {
    constexpr std::string_view kDoubled = ".dmg.dmg";
    constexpr std::string_view kSingle = ".dmg";
    for (auto at = url.find(kDoubled); at != std::string::npos; at = url.find(kDoubled, at + kSingle.size()))
        url.replace(at, kDoubled.size(), kSingle);
    return url;
}

constexpr std::array<MemberEffect, 3> kAgentMembers{{
    {"update_needed",
     [](const Json& value, SessionDetails& session) {
         if (const auto flag = flagOf(value))
             session.setIsUpdateNeeded(*flag);
     }},
    {"download_url",
     [](const Json& value, SessionDetails& session) {
         const auto* url = value.get_ptr<const std::string*>();
         if (url == nullptr || url->empty())
             return;
         session.setCdnUrl(*url);
         session.setIsCdnAvailable(true);
     }},
    {"fallback_url",
     [](const Json& value, SessionDetails& session) {
         const auto* url = value.get_ptr<const std::string*>();
         if (url != nullptr && !url->empty())
             session.setFallbackUrl(*url);
     }},
}};

constexpr std::array<MemberEffect, 2> kLumoraMembers{{
    {"download_url",
     [](const Json& value, SessionDetails& session) {
         if (const auto* url = value.get_ptr<const std::string*>())
             session.setLumoraDownloadUrl(withSingleExtension(*url));
     }},
    {"update",
     [](const Json& value, SessionDetails& session) {
         if (const auto flag = flagOf(value))
             session.setLumoraUpdateNeeded(*flag);
     }},
}};

/// An object or a list: an answer of a bare number, text or null counts as no JSON at all.
std::optional<Json> parseAnswer(const std::string& body) {
    auto answer = parseJson(body);
    if (answer && !answer->is_structured())
        answer.reset();
    return answer;
}

std::optional<Json> memberOf(const std::optional<Json>& object, const std::string& name) {
    const auto* found = object ? member(*object, name) : nullptr;
    return found != nullptr ? std::optional(*found) : std::nullopt;
}

void applyMembers(const std::optional<Json>& object, std::span<const MemberEffect> effects) {
    if (!object || !object->is_object())
        return;
    auto& session = SessionDetails::getInstance();
    for (const auto& [name, value] : object->items())
        for (const auto& effect : effects)
            if (effect.name == name)
                effect.apply(value, session);
}

void stageUpdate(std::string_view operation) {
    log("{} Ovra Lumora Updated Version Available ....", operation);
    if (const auto updater = OvraLumoraUpdater::getInstance())
        updater->checkOvraLumoraUpdate();
}

} // namespace

void applyAgentAnswer(std::string_view operation, const std::string& body) {
    const auto representation = memberOf(parseAnswer(body), "representation");
    log("{} : Response : {}", operation, render(representation));
    applyMembers(memberOf(representation, "AGENT"), kAgentMembers);
}

void applyLumoraAnswer(std::string_view operation, const std::string& body) {
    const auto answer = parseAnswer(body);
    log("{} response :  {}", operation, render(answer));
    applyMembers(memberOf(answer, "representation"), kLumoraMembers);
    if (SessionDetails::getInstance().lumoraUpdateNeeded())
        stageUpdate(operation);
}

} // namespace lumora
