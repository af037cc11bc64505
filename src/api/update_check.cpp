#include "api/update_check.h"

#include "platform/http_session.h"
#include "platform/ports.h"
#include "support/exception_guard.h"
#include "support/log.h"
#include "support/rendering.h"

namespace lumora {

namespace {

bool answerApplied(const std::optional<std::string>& url, std::string_view name, ApplyAnswer apply,
                   const platform::HttpAnswer& answer) {
    if (answer.error) {
        log("{} : Check Update failed : {}", name, render(*answer.error));
        return false;
    }
    const long status = answer.response ? answer.response->statusCode : 0;
    if (status != platform::kHttpOk) {
        log("{} : NSURLConnection failed for this request : {} and status code : {}", name, render(url),
            status);
        return false;
    }
    apply(name, answer.body.value_or(""));
    return true;
}

} // namespace

void startUpdateCheck(std::optional<std::string> url, std::string_view completionName, ApplyAnswer apply,
                      ApiHandler::Completion completion) {
    platform::HttpRequest request;
    request.url = url;

    platform::HttpSessionConfiguration configuration;
    configuration.kind = platform::HttpSessionKind::ephemeral;
    configuration.minimumTls = platform::TlsVersion::tls12;

    // The session's thread has nobody above it who could catch: an exception ends the check, not the process.
    platform::ports()
        .httpSessions->makeSession(configuration)
        ->startDataTask(std::move(request), [url = std::move(url), name = completionName, apply,
                                             completion = std::move(completion)](const auto& answer) {
            bool applied = false;
            guarded(name, [&] { applied = answerApplied(url, name, apply, answer); });
            guarded(name, [&] { completion(applied); });
        });
}

} // namespace lumora
