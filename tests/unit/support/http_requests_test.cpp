#include "support/checked_http_session.h"
#include "support/http_requests.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace lumora {
namespace {

using platform::HttpAnswer;
using platform::HttpDownload;
using platform::HttpRequest;

constexpr int kBadUrl = -1000;
constexpr int kUnsupportedUrl = -1002;
constexpr int kUnknown = -1;
constexpr int kTried = 0;

int refusedWith(const HttpRequest& request) {
    const auto refusal = refusalOf(request);
    EXPECT_TRUE(!refusal || refusal->domain == "NSURLErrorDomain");
    EXPECT_TRUE(!refusal || refusal->failingUrl == request.url);
    return refusal ? refusal->code : kTried;
}

int refusedWith(const char* url) {
    HttpRequest request;
    request.url = url;
    return refusedWith(request);
}

TEST(HttpRequestCheck, takesHttpAndHttpsInAnyCase) {
    for (const char* url :
         {"http://h", "https://h:8443/a?b#c", "HTTPS://H/", "https://[::1]:80/", "http://u@h/"})
        EXPECT_EQ(kTried, refusedWith(url)) << url;
}

TEST(HttpRequestCheck, speaksNoOtherSchemeAndGuessesNone) {
    for (const char* url : {"ftp://h/", "file:///etc/passwd", "h/path", "//h/", "", "httpss://h/", "/a:b"})
        EXPECT_EQ(kUnsupportedUrl, refusedWith(url)) << url;
}

TEST(HttpRequestCheck, wantsAnAddressThatParsesAndAHost) {
    EXPECT_EQ(kBadUrl, refusedWith(HttpRequest{}));
    for (const char* url : {"https:", "https:///path", "https://:80/", "https://u@/", "https:h",
                            "https://h h/", "https://h/\u00E4", "https://h/%"})
        EXPECT_EQ(kBadUrl, refusedWith(url)) << url;
    HttpRequest cutShort;
    cutShort.url = std::string("https://h/\0", 11);
    EXPECT_EQ(kBadUrl, refusedWith(cutShort));
}

TEST(HttpRequestCheck, letsNoTextOfTheHeadReachBeyondItsPlace) {
    HttpRequest request;
    request.url = "https://h/";
    for (const char* method : {"", "GET /x", "GET\r\n", "GE:T"}) {
        request.method = method;
        EXPECT_EQ(kUnknown, refusedWith(request)) << method;
    }
    request.method = "PATCH";
    EXPECT_EQ(kTried, refusedWith(request));
    for (const auto& header :
         std::vector<std::pair<std::string, std::string>>{{"", "v"},
                                                          {"a b", "v"},
                                                          {"a:", "v"},
                                                          {"a", "v\r\nb: c"},
                                                          {"a", "v\n"},
                                                          {"a", std::string("v\0", 2)}}) {
        request.headers = {{"Accept", "text, \u00E4"}, header};
        EXPECT_EQ(kUnknown, refusedWith(request)) << header.first;
    }
    request.headers.pop_back();
    EXPECT_EQ(kTried, refusedWith(request));
}

/// Answers at once, except on its own thread, which runs when the test lets it.
struct RecordingSession final : CheckedHttpSession {
    void sendForData(const HttpRequest& request, platform::HttpDataCompletion completion) override {
        sent.push_back(*request.url);
        completion({"body", {}, {}});
    }
    void sendForDownload(const HttpRequest& request, platform::HttpDownloadCompletion completion) override {
        sent.push_back(*request.url);
        completion({"/file", {}, {}});
    }
    void endWhenIdle() override { ++ends; }
    void onOwnThread(std::function<void()> work) override { queued.push_back(std::move(work)); }

    std::vector<std::string> sent;
    std::vector<std::function<void()>> queued;
    int ends = 0;
};

HttpRequest requestOf(const char* url) {
    HttpRequest request;
    request.url = url;
    return request;
}

TEST(CheckedHttpSessions, handOnWhatIsToBeTried) {
    RecordingSession session;
    std::string told;

    session.startDataTask(requestOf("https://a/"), [&](const HttpAnswer& answer) { told += *answer.body; });
    session.startDownloadTask(requestOf("https://b/"),
                              [&](const HttpDownload& download) { told += *download.temporaryFile; });

    EXPECT_EQ((std::vector<std::string>{"https://a/", "https://b/"}), session.sent);
    EXPECT_EQ("body/file", told);
}

TEST(CheckedHttpSessions, tellARefusalOnTheirOwnThread) {
    RecordingSession session;
    std::vector<int> codes;

    session.startDataTask(requestOf("ftp://a/"),
                          [&](const HttpAnswer& answer) { codes.push_back(answer.error->code); });
    session.startDownloadTask({},
                              [&](const HttpDownload& download) { codes.push_back(download.error->code); });

    EXPECT_TRUE(codes.empty());
    ASSERT_EQ(2U, session.queued.size());
    for (const auto& work : session.queued)
        work();
    EXPECT_EQ((std::vector<int>{kUnsupportedUrl, kBadUrl}), codes);
    EXPECT_TRUE(session.sent.empty());
}

TEST(CheckedHttpSessions, takeNothingAfterTheirEnd) {
    RecordingSession session;
    int code = 0;

    session.finishTasksAndInvalidate();
    session.startDataTask(requestOf("https://a/"),
                          [&](const HttpAnswer& answer) { code = answer.error->code; });
    session.queued.at(0)();

    EXPECT_EQ(-999, code);
    EXPECT_EQ(1, session.ends);
    EXPECT_TRUE(session.sent.empty());
}

TEST(CheckedHttpSessions, letNothingOutThatACompletionRaises) {
    RecordingSession session;

    EXPECT_NO_THROW(session.startDataTask(requestOf("https://a/"),
                                          [](const HttpAnswer&) { throw std::runtime_error("of a test"); }));
    session.startDataTask(requestOf("ftp://a/"),
                          [](const HttpAnswer&) { throw std::runtime_error("of a test"); });
    EXPECT_NO_THROW(session.queued.at(0)());
}

} // namespace
} // namespace lumora
