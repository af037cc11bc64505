#include "config/session_details.h"
#include "config/utils.h"
#include "platform/http_session.h"
#include "platform/ports.h"
#include "support/exception_guard.h"
#include "support/json.h"
#include "support/log.h"
#include "support/rendering.h"
#include "support/url.h"

namespace lumora {

namespace {

constexpr const char* kGetCustomDomain = "+[Utils getCustomDomain]";

/// Where the configured server tells the customer's own domain. An absent server stands there as the null
/// placeholder: the request then fails like any other to an unknown host.
std::optional<std::string> serviceDomainUrl(const SessionDetails& session) {
    return parseUrl(
        percentEncodeForQuery(fmt::format("https://{}/api/v2/service_domain?src=rs&lumora_token={}",
                                          render(session.webServerName()), render(session.lumoraToken()))));
}

std::optional<Json> representationOf(const std::string& body) {
    const auto answer = parseJson(body);
    const auto* representation = answer ? member(*answer, "representation") : nullptr;
    return representation ? std::optional(*representation) : std::nullopt;
}

void applyServiceDomain(const std::optional<Json>& representation, SessionDetails& session) {
    const auto* domain = representation ? member(*representation, "service_domain") : nullptr;
    const auto* host = domain ? domain->get_ptr<const Json::string_t*>() : nullptr;
    if (host == nullptr || host->empty())
        return;
    session.setWebServerName(*host);
    session.setCustomDomainEnabled(session.webServerName() == session.staticWebServerName() ? "false"
                                                                                            : "true");
}

void fetchCustomDomain(SessionDetails& session) {
    log("{} : ********************** Fetching Custom Domain for session", kGetCustomDomain);
    // With the default time-out: launch waits for a slow server rather than miss its answer.
    platform::HttpRequest request;
    request.url = serviceDomainUrl(session);
    log("{} : Requesting URL : {}", kGetCustomDomain, render(request.url));

    const auto answer = platform::ports().httpSessions->sendSynchronously(request);
    if (answer.error) // in the update checks' words: support staff search for them
        log("{} : Check Update failed : {}", kGetCustomDomain, render(*answer.error));
    if (!answer.body) {
        log("{} : Error in the HTTP Request(URL: {}) : {}", kGetCustomDomain, render(request.url),
            answer.error ? answer.error->localizedDescription : kNullPlaceholder);
        return;
    }

    const long status = answer.response ? answer.response->statusCode : 0;
    log("{} : Request Url URL : {}\n", kGetCustomDomain, render(request.url));
    log("{} : Status code : {}", kGetCustomDomain, status);
    if (status != platform::kHttpOk)
        return;

    const auto representation = representationOf(*answer.body);
    log("{} : Response : {}", kGetCustomDomain, render(representation));
    applyServiceDomain(representation, session);
}

} // namespace

void Utils::getCustomDomain() {
    guarded(kGetCustomDomain, [] { fetchCustomDomain(SessionDetails::getInstance()); });
}

} // namespace lumora
