#include "api/api_handler.h"

#include "api/update_answers.h"
#include "api/update_check.h"
#include "config/data_centres.h"
#include "config/session_details.h"
#include "support/exception_guard.h"
#include "support/log.h"
#include "support/rendering.h"
#include "support/shared_instance.h"
#include "support/url.h"

namespace lumora {

namespace {

constexpr const char* kGetInstance = "+[ApiHandler getInstance]";
constexpr const char* kCheckAgent = "-[ApiHandler checkOvraTesselUpdateWithCompletion:]";
constexpr const char* kCheckAgentCompletion =
    "-[ApiHandler checkOvraTesselUpdateWithCompletion:]_block_invoke";
constexpr const char* kCheckLumora = "-[ApiHandler checkLumoraUpdateWithCompletion:]";
constexpr const char* kCheckLumoraCompletion = "-[ApiHandler checkLumoraUpdateWithCompletion:]_block_invoke";

constexpr const char* kArchitecture = "64";
constexpr const char* kDefaultDataCentre = "com";

SharedInstance<ApiHandler>& sharedInstance() {
    static auto* shared = new SharedInstance<ApiHandler>; // requests may still be answered at exit
    return *shared;
}

std::optional<std::string> agentCheckUrl(const SessionDetails& session) {
    return parseUrl(percentEncodeForQuery(
        fmt::format("https://{}/api/v2/agent/check_update?agent_version={}&agent=mac {}",
                    render(session.webServerName()), render(session.localOvraAppVersion()), kArchitecture)));
}

/// Not percent-encoded: a value with characters that no URL may carry makes the request fail.
std::optional<std::string> lumoraCheckUrl(const SessionDetails& session) {
    auto url = fmt::format(
        "https://{}/api/v1/customer_plugin/check_update?os=mac&format=dmg&source=lumora&version={}",
        render(session.webServerName()), render(session.localOvraLumoraAppVersion()));
    if (const auto token = session.lumoraToken())
        url += "&lumora_token=" + *token;
    return parseUrl(url);
}

} // namespace

ApiHandler& ApiHandler::getInstance() {
    return sharedInstance().get([] {
        auto handler = std::make_unique<ApiHandler>();
        guarded(kGetInstance, [] { log("{} : Update Info Object Allocated", kGetInstance); });
        return handler;
    });
}

void ApiHandler::resetForTesting() { sharedInstance().resetForTesting(); }

void ApiHandler::checkOvraTesselUpdate(Completion completion) {
    const bool started = guarded(kCheckAgent, [&completion] {
        startUpdateCheck(agentCheckUrl(SessionDetails::getInstance()), kCheckAgentCompletion,
                         applyAgentAnswer, completion);
    });
    if (!started)
        completion(false);
}

void ApiHandler::checkLumoraUpdate(Completion completion) {
    const bool started = guarded(kCheckLumora, [&completion] {
        auto& session = SessionDetails::getInstance();
        if (!session.webServerName())
            session.setWebServerName(dataCentreHost(kDefaultDataCentre));
        startUpdateCheck(lumoraCheckUrl(session), kCheckLumoraCompletion, applyLumoraAnswer, completion);
    });
    if (!started)
        completion(false);
}

} // namespace lumora
