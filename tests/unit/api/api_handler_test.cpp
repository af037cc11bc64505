#include "api/update_check_test.h"
#include "fakes/failing_streams.h"

#include <array>
#include <thread>

namespace lumora {
namespace {

using fakes::exceptionLine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ApiHandlerInstance : public CoreTest {};

TEST_F(ApiHandlerInstance, isMadeAndLoggedOnce) {
    auto& first = ApiHandler::getInstance();
    auto& second = ApiHandler::getInstance();

    EXPECT_EQ(&first, &second);
    EXPECT_THAT(streams.logged(), ElementsAre("+[ApiHandler getInstance] : Update Info Object Allocated"));
}

TEST_F(ApiHandlerInstance, stillStandsWhenItsLineCannotBeWritten) {
    fakes::FailingStreams failing(streams, 1);
    platform::ports().standardStreams = &failing;

    EXPECT_NO_THROW(static_cast<void>(ApiHandler::getInstance()));

    EXPECT_THAT(streams.logged(), ElementsAre(exceptionLine("+[ApiHandler getInstance]", "write failed")));
}

TEST_F(ApiHandlerInstance, isOneForTwoConcurrentFirstCalls) {
    std::array<ApiHandler*, 2> seen{};
    {
        std::thread one([&seen] { seen[0] = &ApiHandler::getInstance(); });
        std::thread other([&seen] { seen[1] = &ApiHandler::getInstance(); });
        one.join();
        other.join();
    }

    EXPECT_NE(seen[0], nullptr);
    EXPECT_EQ(seen[0], seen[1]);
    EXPECT_THAT(streams.logged(), ElementsAre("+[ApiHandler getInstance] : Update Info Object Allocated"));
}

/// What both checks share; run once for each.
struct Check {
    const char* name;
    void (ApiHandler::*start)(ApiHandler::Completion);
    const char* operation;
    const char* url;
    const char* nothingApplied; ///< the line about an answer that is no JSON
};

class BothChecks : public UpdateCheckTest, public ::testing::WithParamInterface<Check> {
  protected:
    void start() { (ApiHandler::getInstance().*GetParam().start)(keepAnswer()); }
    [[nodiscard]] std::string completionName() const {
        return std::string(GetParam().operation) + "_block_invoke";
    }
};

INSTANTIATE_TEST_SUITE_P(
    Checks, BothChecks,
    ::testing::Values(
        Check{"agent", &ApiHandler::checkOvraTesselUpdate,
              "-[ApiHandler checkOvraTesselUpdateWithCompletion:]",
              "https://com.ovratessel.example/api/v2/agent/check_update?agent_version=3.1&agent=mac%2064",
              " : Response : (null)"},
        Check{"lumora", &ApiHandler::checkLumoraUpdate, "-[ApiHandler checkLumoraUpdateWithCompletion:]",
              "https://com.ovratessel.example/api/v1/customer_plugin/"
              "check_update?os=mac&format=dmg&source=lumora&version=1.0.0",
              " response :  (null)"}),
    [](const auto& check) { return check.param.name; });

TEST_P(BothChecks, sendOneGetInAnEphemeralSessionWithTls12) {
    start();

    ASSERT_EQ(http.tasks.size(), 1U);
    const auto& task = http.tasks[0];
    EXPECT_EQ(task.request.url, GetParam().url);
    EXPECT_EQ(task.request.method, "GET");
    EXPECT_THAT(task.request.headers, IsEmpty());
    EXPECT_EQ(task.request.timeout, std::chrono::seconds(60));
    EXPECT_EQ(task.request.cachePolicy, platform::HttpCachePolicy::useProtocolCachePolicy);
    EXPECT_EQ(task.configuration.kind, platform::HttpSessionKind::ephemeral);
    EXPECT_EQ(task.configuration.minimumTls, platform::TlsVersion::tls12);
    EXPECT_EQ(task.configuration.redirects, platform::HttpRedirects::follow);
    EXPECT_FALSE(task.configuration.resourceTimeout);
    EXPECT_FALSE(task.configuration.waitsForConnectivity);
}

TEST_P(BothChecks, returnBeforeTheyAreAnswered) {
    start();

    EXPECT_THAT(answers, IsEmpty());
    EXPECT_THAT(streams.logged(), IsEmpty());
}

TEST_P(BothChecks, reportATransportErrorAsFailure) {
    start();

    http.failData(0, {"NSURLErrorDomain", -1004, "Could not connect to the server.", GetParam().url});

    EXPECT_THAT(answers, ElementsAre(false));
    EXPECT_THAT(streams.logged(),
                ElementsAre(completionName() + " : Check Update failed : Error Domain=NSURLErrorDomain "
                                               "Code=-1004 \"Could not connect to the server.\""));
}

TEST_P(BothChecks, takeAnErrorBesideA200AsFailure) {
    start();

    http.tasks[0].dataCompletion(
        {{},
         platform::HttpResponse{200, GetParam().url},
         platform::Error{"NSURLErrorDomain", -1005, "The connection was lost.", {}}});

    EXPECT_THAT(answers, ElementsAre(false));
    EXPECT_THAT(streams.logged(), ElementsAre(completionName() + " : Check Update failed : Error "
                                                                 "Domain=NSURLErrorDomain Code=-1005 \"The "
                                                                 "connection was lost.\""));
}

TEST_P(BothChecks, takeAnyStatusBut200AsFailure) {
    for (const long status : {201L, 304L, 404L, 500L}) {
        answers.clear();
        forgetLines();
        start();

        http.finishData(http.tasks.size() - 1, status,
                        R"({"representation":{"AGENT":{"update_needed":true},"update":true}})");

        EXPECT_THAT(answers, ElementsAre(false));
        EXPECT_THAT(streams.logged(),
                    ElementsAre(completionName() + " : NSURLConnection failed for this request : " +
                                GetParam().url + " and status code : " + std::to_string(status)));
    }
    EXPECT_FALSE(session.isUpdateNeeded());
    EXPECT_FALSE(session.lumoraUpdateNeeded());
}

TEST_P(BothChecks, takeNoResponseAtAllAsStatus0) {
    start();

    http.tasks[0].dataCompletion({"", {}, {}});

    EXPECT_THAT(answers, ElementsAre(false));
    EXPECT_THAT(streams.logged(),
                ElementsAre(completionName() + " : NSURLConnection failed for this request : " +
                            GetParam().url + " and status code : 0"));
}

TEST_P(BothChecks, applyNothingOfA200ThatIsNoJsonButReportSuccess) {
    for (const std::string body :
         {"", "<html>", "{\"representation\":", "null", "42", "\"text\"", "true", "\xff\xfe"}) {
        answers.clear();
        forgetLines();
        start();

        http.finishData(http.tasks.size() - 1, 200, body);

        EXPECT_THAT(answers, ElementsAre(true)) << body;
        EXPECT_THAT(streams.logged(), ElementsAre(completionName() + GetParam().nothingApplied)) << body;
    }
    EXPECT_FALSE(session.isUpdateNeeded());
    EXPECT_FALSE(session.isCdnAvailable());
    EXPECT_EQ(session.lumoraDownloadUrl(), std::nullopt);
}

TEST_P(BothChecks, surviveADeeplyNestedAnswer) {
    start();

    http.finishData(0, 200, std::string(100'000, '['));

    EXPECT_THAT(answers, ElementsAre(true));
    EXPECT_THAT(streams.logged(), ElementsAre(completionName() + GetParam().nothingApplied));
}

TEST_P(BothChecks, reportFailureAtOnceWhenTheRequestCannotBeMade) {
    http.throwOnMakeSession = true;

    start();

    EXPECT_THAT(answers, ElementsAre(false));
    EXPECT_THAT(streams.logged(), ElementsAre(exceptionLine(GetParam().operation, "no session")));
}

TEST_P(BothChecks, letNothingEscapeFromTheirCompletion) {
    int calls = 0;
    (ApiHandler::getInstance().*GetParam().start)([&calls](bool) {
        ++calls;
        throw std::runtime_error("caller broke");
    });

    EXPECT_NO_THROW(http.finishData(0, 500, ""));

    EXPECT_EQ(calls, 1);
    EXPECT_EQ(streams.logged().back(), exceptionLine(completionName(), "caller broke"));
}

TEST_P(BothChecks, haveASessionEach) {
    start();
    start();

    EXPECT_EQ(http.tasks.size(), 2U);
    http.finishData(1, 200, "{}");
    http.finishData(0, 500, "");
    EXPECT_THAT(answers, ElementsAre(true, false));
}

} // namespace
} // namespace lumora
