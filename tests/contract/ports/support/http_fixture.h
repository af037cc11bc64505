#pragma once

#include "support/backend.h"
#include "support/temporary_folder.h"
#include "support/test_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <optional>
#include <string>

namespace lumora::contract {

/// Sessions on the real backend, and tasks that are waited for.
class HttpFixture : public testing::Test {
  protected:
    static platform::HttpRequest get(const std::string& url) {
        platform::HttpRequest request;
        request.url = url;
        return request;
    }

    platform::HttpAnswer data(const platform::HttpRequest& request,
                              const platform::HttpSessionConfiguration& configuration = {}) {
        const auto answer = std::make_shared<std::promise<platform::HttpAnswer>>();
        sessions_->makeSession(configuration)->startDataTask(request, [answer](platform::HttpAnswer given) {
            answer->set_value(std::move(given));
        });
        return answer->get_future().get();
    }

    /// What a download gave: the file's contents, mode and place, as its completion saw them.
    struct Downloaded {
        std::optional<std::string> contents;
        std::filesystem::perms mode{};
        std::string path;
        std::optional<platform::HttpResponse> response;
        std::optional<platform::Error> error;
    };

    Downloaded download(const platform::HttpRequest& request,
                        const platform::HttpSessionConfiguration& configuration = {}) {
        const auto result = std::make_shared<std::promise<Downloaded>>();
        sessions_->makeSession(configuration)
            ->startDownloadTask(request, [result](platform::HttpDownload given) {
                Downloaded seen;
                if (given.temporaryFile) {
                    seen.path = *given.temporaryFile;
                    seen.contents = contentsOf(seen.path);
                    seen.mode = std::filesystem::status(seen.path).permissions();
                }
                seen.response = given.response;
                seen.error = given.error;
                result->set_value(std::move(seen));
            });
        return result->get_future().get();
    }

    /// What a request's head asks for.
    static std::string pathOf(const std::string& head) {
        const std::size_t begin = head.find(' ') + 1;
        return head.substr(begin, head.find(' ', begin) - begin);
    }

    /// The error's code, 0 for none.
    template <class Answer>
    static int codeOf(const Answer& answer) {
        return answer.error ? answer.error->code : 0;
    }

    TemporaryFolder folder_;
    std::unique_ptr<platform::HttpSessions> sessions_ = makeHttpSessions();
};

} // namespace lumora::contract
