#include "platform/linux/ports/linux_http_sessions.h"

#include "platform/linux/ports/completion_queue.h"

#include <gio/gio.h>

#include <atomic>
#include <future>
#include <utility>

namespace lumora::platform::linux_backend {

namespace {

HttpAnswer answerFrom(HttpOutcome&& outcome) {
    return {std::move(outcome.body), std::move(outcome.response), std::move(outcome.error)};
}

class LinuxHttpSession final : public HttpSession {
  public:
    LinuxHttpSession(std::shared_ptr<HttpTransport> transport, const HttpSessionConfiguration& configuration)
        : transport_(std::move(transport)), configuration_(configuration) {}

    void startDataTask(HttpRequest request, HttpDataCompletion completion) override {
        start(std::move(request), BodyPlace::memory,
              [completion = std::move(completion)](HttpOutcome&& outcome) {
                  completion(answerFrom(std::move(outcome)));
              });
    }

    void startDownloadTask(HttpRequest request, HttpDownloadCompletion completion) override {
        start(std::move(request), BodyPlace::file,
              [completion = std::move(completion)](HttpOutcome&& outcome) {
                  HttpDownload download{{}, std::move(outcome.response), std::move(outcome.error)};
                  if (outcome.file)
                      download.temporaryFile = outcome.file->path();
                  completion(std::move(download));
              });
    }

    void finishTasksAndInvalidate() override { isInvalid_ = true; }

  private:
    void start(HttpRequest request, BodyPlace place, std::function<void(HttpOutcome&&)> completion) {
        completions_->start();
        // Whatever is left of the session lives in this, so that a task outlives its session.
        const auto finish = [completions = completions_,
                             completion = std::move(completion)](HttpOutcome outcome) {
            auto shared = std::make_shared<HttpOutcome>(std::move(outcome));
            completions->add([completion, shared] { completion(std::move(*shared)); });
        };
        if (isInvalid_)
            finish(HttpOutcome{{}, {}, {}, urlError(UrlError::cancelled, request.url)});
        else
            transport_->start(std::move(request), configuration_, place, finish);
    }

    const std::shared_ptr<HttpTransport> transport_;
    const HttpSessionConfiguration configuration_;
    const std::shared_ptr<CompletionQueue> completions_ = std::make_shared<CompletionQueue>();
    std::atomic<bool> isInvalid_ = false;
};

} // namespace

bool systemHasNetworkPath() {
    return g_network_monitor_get_network_available(g_network_monitor_get_default()) != FALSE;
}

LinuxHttpSessions::LinuxHttpSessions(HttpTransferSettings settings, std::function<bool()> hasNetworkPath)
    : transport_(std::make_shared<HttpTransport>(std::move(settings), std::move(hasNetworkPath))) {}

std::shared_ptr<HttpSession> LinuxHttpSessions::makeSession(const HttpSessionConfiguration& configuration) {
    return std::make_shared<LinuxHttpSession>(transport_, configuration);
}

HttpAnswer LinuxHttpSessions::sendSynchronously(const HttpRequest& request) {
    HttpSessionConfiguration configuration;
    configuration.kind = HttpSessionKind::standard;
    const auto answer = std::make_shared<std::promise<HttpAnswer>>();
    transport_->start(request, configuration, BodyPlace::memory,
                      [answer](HttpOutcome outcome) { answer->set_value(answerFrom(std::move(outcome))); });
    return answer->get_future().get();
}

} // namespace lumora::platform::linux_backend
