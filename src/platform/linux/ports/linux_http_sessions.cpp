#include "platform/linux/ports/linux_http_sessions.h"

#include "platform/linux/ports/completion_queue.h"
#include "support/checked_http_session.h"
#include "support/http_requests.h"

#include <gio/gio.h>

#include <utility>

namespace lumora::platform::linux_backend {

namespace {

class LinuxHttpSession final : public CheckedHttpSession {
  public:
    LinuxHttpSession(std::shared_ptr<HttpTransport> transport, const HttpSessionConfiguration& configuration)
        : transport_(std::move(transport)), configuration_(configuration) {}

  private:
    void sendForData(const HttpRequest& request, HttpDataCompletion completion) override {
        send(request, BodyPlace::memory, [completion = std::move(completion)](HttpOutcome&& outcome) {
            completion({std::move(outcome.body), std::move(outcome.response), std::move(outcome.error)});
        });
    }

    void sendForDownload(const HttpRequest& request, HttpDownloadCompletion completion) override {
        send(request, BodyPlace::file, [completion = std::move(completion)](HttpOutcome&& outcome) {
            HttpDownload download{{}, std::move(outcome.response), std::move(outcome.error)};
            if (outcome.file)
                download.temporaryFile = outcome.file->path();
            completion(std::move(download));
        });
    }

    void endWhenIdle() override {} // nothing of a session outlives its tasks

    void onOwnThread(std::function<void()> work) override {
        completions_->start();
        completions_->add(std::move(work));
    }

    void send(const HttpRequest& request, BodyPlace place, std::function<void(HttpOutcome&&)> completion) {
        completions_->start();
        // Whatever is left of the session lives in this, so that a task outlives its session.
        transport_->start(
            request, configuration_, place,
            [completions = completions_, completion = std::move(completion)](HttpOutcome outcome) {
                auto shared = std::make_shared<HttpOutcome>(std::move(outcome));
                completions->add([completion, shared] { completion(std::move(*shared)); });
            });
    }

    const std::shared_ptr<HttpTransport> transport_;
    const HttpSessionConfiguration configuration_;
    const std::shared_ptr<CompletionQueue> completions_ = std::make_shared<CompletionQueue>();
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
    return sendAndWait(*this, request);
}

} // namespace lumora::platform::linux_backend
