#pragma once

#include "platform/http_session.h"

#include <atomic>
#include <functional>

namespace lumora {

/// What the HTTP sessions of every backend do alike. A request that is not to be tried, or that comes after the session's
/// end, fails as if it had been: on the session's own thread. Nothing that a completion raises gets into that thread.
class CheckedHttpSession : public platform::HttpSession {
  public:
    void startDataTask(platform::HttpRequest request, platform::HttpDataCompletion completion) final;
    void startDownloadTask(platform::HttpRequest request, platform::HttpDownloadCompletion completion) final;
    void finishTasksAndInvalidate() final;

  protected:
    // Each as the operation that it serves, but for what is told above: the request has an address and is sound.
    virtual void sendForData(const platform::HttpRequest& request,
                             platform::HttpDataCompletion completion) = 0;
    virtual void sendForDownload(const platform::HttpRequest& request,
                                 platform::HttpDownloadCompletion completion) = 0;
    virtual void endWhenIdle() = 0;

    /// Runs the work, which raises nothing, on the session's own thread, in its turn.
    virtual void onOwnThread(std::function<void()> work) = 0;

  private:
    template <class Answer, class Send>
    void start(const platform::HttpRequest& request, std::function<void(Answer)> completion, Send send);

    std::atomic<bool> isInvalid_ = false;
};

} // namespace lumora
