#include "support/checked_http_session.h"

#include "support/http_requests.h"
#include "support/url_errors.h"

#include <fmt/format.h>

#include <cstdio>
#include <exception>
#include <utility>

namespace lumora {

namespace {

// The core has logged what it had to: this is the developer's to know.
template <class Answer>
std::function<void(Answer)> contained(std::function<void(Answer)> completion) {
    return [completion = std::move(completion)](Answer answer) {
        try {
            completion(std::move(answer));
        } catch (const std::exception& raised) {
            fmt::print(stderr, "a completion raised: {}\n", raised.what());
        }
    };
}

} // namespace

template <class Answer, class Send>
void CheckedHttpSession::start(const platform::HttpRequest& request, std::function<void(Answer)> completion,
                               Send send) {
    auto refusal = refusalOf(request);
    if (!refusal && isInvalid_)
        refusal = urlError(UrlError::cancelled, request.url);
    completion = contained(std::move(completion));
    if (!refusal) {
        send(std::move(completion));
        return;
    }
    Answer refused;
    refused.error = std::move(refusal);
    onOwnThread([completion = std::move(completion), refused = std::move(refused)] { completion(refused); });
}

void CheckedHttpSession::startDataTask(platform::HttpRequest request,
                                       platform::HttpDataCompletion completion) {
    start(request, std::move(completion),
          [&](platform::HttpDataCompletion contained) { sendForData(request, std::move(contained)); });
}

void CheckedHttpSession::startDownloadTask(platform::HttpRequest request,
                                           platform::HttpDownloadCompletion completion) {
    start(request, std::move(completion), [&](platform::HttpDownloadCompletion contained) {
        sendForDownload(request, std::move(contained));
    });
}

void CheckedHttpSession::finishTasksAndInvalidate() {
    isInvalid_ = true;
    endWhenIdle();
}

} // namespace lumora
