#pragma once

#include "platform/http_session.h"

#include <deque>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumora::fakes {

/// Keeps every task until the test finishes it: `http.finishData(0, {...})`.
class FakeHttpSessions final : public platform::HttpSessions {
  public:
    struct Task {
        platform::HttpRequest request;
        platform::HttpSessionConfiguration configuration;
        platform::HttpDataCompletion dataCompletion;         ///< set for data tasks
        platform::HttpDownloadCompletion downloadCompletion; ///< set for downloads
        bool invalidated = false; ///< the session was told to finish its tasks and invalidate itself
    };

    std::deque<Task> tasks; ///< in the order started
    std::vector<platform::HttpRequest> synchronousRequests;
    std::function<platform::HttpAnswer(const platform::HttpRequest&)> answerSynchronously;
    bool throwOnMakeSession = false; ///< lets a test reach an operation's exception guard

    std::shared_ptr<platform::HttpSession>
    makeSession(const platform::HttpSessionConfiguration& configuration) override {
        if (throwOnMakeSession)
            throw std::runtime_error("no session");
        return std::make_shared<Session>(*this, configuration);
    }

    platform::HttpAnswer sendSynchronously(const platform::HttpRequest& request) override {
        synchronousRequests.push_back(request);
        return answerSynchronously(request);
    }

    /// Ends a data task with a status and a body.
    void finishData(std::size_t index, long status, std::string body) {
        const auto completion = tasks.at(index).dataCompletion;
        completion(
            {std::move(body), platform::HttpResponse{status, tasks.at(index).request.url.value_or("")}, {}});
    }

    void failData(std::size_t index, platform::Error error) {
        const auto completion = tasks.at(index).dataCompletion;
        completion({{}, {}, std::move(error)});
    }

    /// Ends a download with a status and a temporary file.
    void finishDownload(std::size_t index, long status, std::string temporaryFile) {
        const auto completion = tasks.at(index).downloadCompletion;
        completion({std::move(temporaryFile),
                    platform::HttpResponse{status, tasks.at(index).request.url.value_or("")},
                    {}});
    }

    void failDownload(std::size_t index, platform::Error error) {
        const auto completion = tasks.at(index).downloadCompletion;
        completion({{}, {}, std::move(error)});
    }

  private:
    class Session final : public platform::HttpSession {
      public:
        Session(FakeHttpSessions& owner, const platform::HttpSessionConfiguration& configuration)
            : owner_(owner), configuration_(configuration) {}

        void startDataTask(platform::HttpRequest request, platform::HttpDataCompletion completion) override {
            owner_.tasks.push_back({std::move(request), configuration_, std::move(completion), {}, false});
            last_ = owner_.tasks.size();
        }

        void startDownloadTask(platform::HttpRequest request,
                               platform::HttpDownloadCompletion completion) override {
            owner_.tasks.push_back({std::move(request), configuration_, {}, std::move(completion), false});
            last_ = owner_.tasks.size();
        }

        void finishTasksAndInvalidate() override {
            if (last_ > 0)
                owner_.tasks.at(last_ - 1).invalidated = true;
        }

      private:
        FakeHttpSessions& owner_;
        platform::HttpSessionConfiguration configuration_;
        std::size_t last_ = 0;
    };
};

} // namespace lumora::fakes
