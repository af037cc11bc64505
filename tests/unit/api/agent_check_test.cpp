#include "api/update_check_test.h"
#include "fakes/failing_streams.h"

namespace lumora {
namespace {

using fakes::exceptionLine;
using ::testing::ElementsAre;

constexpr const char* kAgentCheckBlock = "-[ApiHandler checkOvraTesselUpdateWithCompletion:]_block_invoke";

class AgentCheck : public UpdateCheckTest {
  protected:
    void start() { ApiHandler::getInstance().checkOvraTesselUpdate(keepAnswer()); }

    void answerAgent(const std::string& agent) {
        start();
        http.finishData(http.tasks.size() - 1, 200, R"({"representation":{"AGENT":)" + agent + "}}");
    }

    std::optional<std::string> requestedUrl() {
        start();
        return http.tasks.back().request.url;
    }
};

TEST_F(AgentCheck, appliesAllThreeMembers) {
    answerAgent(
        R"({"download_url":"https://cdn.example/OvraMac.dmg","fallback_url":"https://b.example/OvraMac.dmg",)"
        R"("unknown":1,"update_needed":true})");

    EXPECT_TRUE(session.isUpdateNeeded());
    EXPECT_EQ(session.cdnUrl(), "https://cdn.example/OvraMac.dmg");
    EXPECT_TRUE(session.isCdnAvailable());
    EXPECT_EQ(session.fallbackUrl(), "https://b.example/OvraMac.dmg");
    EXPECT_THAT(answers, ElementsAre(true));
}

TEST_F(AgentCheck, logsTheRepresentation) {
    start();

    http.finishData(0, 200, R"({ "other": 1, "representation": { "AGENT": { "update_needed": false } } })");

    EXPECT_THAT(streams.logged(), ElementsAre(std::string(kAgentCheckBlock) +
                                              R"( : Response : {"AGENT":{"update_needed":false}})"));
}

TEST_F(AgentCheck, hasAppliedWhenItReports) {
    bool neededThen = false;
    ApiHandler::getInstance().checkOvraTesselUpdate([&](bool) { neededThen = session.isUpdateNeeded(); });

    http.finishData(0, 200, R"({"representation":{"AGENT":{"update_needed":true}}})");

    EXPECT_TRUE(neededThen);
}

TEST_F(AgentCheck, convertsAnyKindOfUpdateNeeded) {
    const std::vector<std::pair<std::string, bool>> cases{
        {"true", true},       {"false", false}, {"1", true},        {"0", false},      {"-2", true},
        {"0.5", true},        {"0.0", false},   {"\"YES\"", true},  {"\"yes\"", true}, {"\"True\"", true},
        {"\"t\"", true},      {"\"1\"", true},  {"\" 007\"", true}, {"\"9x\"", true},  {"\"NO\"", false},
        {"\"false\"", false}, {"\"0\"", false}, {"\"\"", false},    {"\"on\"", false},
    };
    for (const auto& [value, expected] : cases) {
        session.setIsUpdateNeeded(!expected);
        answerAgent(R"({"update_needed":)" + value + "}");
        EXPECT_EQ(session.isUpdateNeeded(), expected) << value;
    }
}

TEST_F(AgentCheck, keepsEarlierValuesWhereTheTypeDoesNotFit) {
    session.setIsUpdateNeeded(true);
    session.setCdnUrl("https://earlier.example/a.dmg");
    session.setFallbackUrl("https://earlier.example/b.dmg");
    for (const std::string value : {"null", "[]", "{}"})
        answerAgent(R"({"download_url":)" + value + R"(,"fallback_url":)" + value + R"(,"update_needed":)" +
                    value + "}");
    answerAgent(R"({"download_url":1,"fallback_url":true})");

    EXPECT_TRUE(session.isUpdateNeeded());
    EXPECT_EQ(session.cdnUrl(), "https://earlier.example/a.dmg");
    EXPECT_EQ(session.fallbackUrl(), "https://earlier.example/b.dmg");
    EXPECT_FALSE(session.isCdnAvailable());
    EXPECT_THAT(answers, ElementsAre(true, true, true, true));
}

TEST_F(AgentCheck, leavesTheAddressesUnchangedForEmptyOnes) {
    session.setCdnUrl("https://earlier.example/a.dmg");
    session.setFallbackUrl("https://earlier.example/b.dmg");

    answerAgent(R"({"download_url":"","fallback_url":""})");

    EXPECT_EQ(session.cdnUrl(), "https://earlier.example/a.dmg");
    EXPECT_FALSE(session.isCdnAvailable());
    EXPECT_EQ(session.fallbackUrl(), "https://earlier.example/b.dmg");
}

TEST_F(AgentCheck, resetsNothing) {
    answerAgent(R"({"download_url":"https://cdn.example/OvraMac.dmg","update_needed":true})");
    answerAgent("{}");

    EXPECT_TRUE(session.isUpdateNeeded());
    EXPECT_TRUE(session.isCdnAvailable());
    EXPECT_EQ(session.cdnUrl(), "https://cdn.example/OvraMac.dmg");
}

TEST_F(AgentCheck, appliesNothingWithoutRepresentationOrAgent) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {R"({"AGENT":{"update_needed":true}})", "(null)"},
        {R"({"representation":null})", "(null)"},
        {R"([{"representation":{"AGENT":{"update_needed":true}}}])", "(null)"},
        {R"({"representation":{"update_needed":true}})", R"({"update_needed":true})"},
        {R"({"representation":{"AGENT":[{"update_needed":true}]}})", R"({"AGENT":[{"update_needed":true}]})"},
        {R"({"representation":[{"AGENT":{"update_needed":true}}]})", R"([{"AGENT":{"update_needed":true}}])"},
    };
    for (const auto& [body, logged] : cases) {
        answers.clear();
        forgetLines();
        start();
        http.finishData(http.tasks.size() - 1, 200, body);
        EXPECT_FALSE(session.isUpdateNeeded()) << body;
        EXPECT_THAT(answers, ElementsAre(true)) << body;
        EXPECT_THAT(streams.logged(), ElementsAre(kAgentCheckBlock + (" : Response : " + logged)));
    }
}

TEST_F(AgentCheck, startsNoSelfUpdate) {
    session.setLumoraUpdateNeeded(true);

    answerAgent("{}");

    EXPECT_EQ(http.tasks.size(), 1U);
}

TEST_F(AgentCheck, percentEncodesItsAddress) {
    session.setLocalOvraAppVersion("3 %\"#");

    EXPECT_EQ(requestedUrl(), "https://com.ovratessel.example/api/v2/agent/"
                              "check_update?agent_version=3%20%25%22%23&agent=mac%2064");
}

TEST_F(AgentCheck, namesAbsentValuesByTheNullPlaceholder) {
    session.setWebServerName(std::nullopt);
    session.setLocalOvraAppVersion(std::nullopt);

    EXPECT_EQ(requestedUrl(), "https://(null)/api/v2/agent/check_update?agent_version=(null)&agent=mac%2064");
    EXPECT_EQ(session.webServerName(), std::nullopt); // only the self check falls back to a default server
}

TEST_F(AgentCheck, leavesAnAddressThatDoesNotParseToTheSession) {
    session.setWebServerName("host:port");

    EXPECT_EQ(requestedUrl(), std::nullopt);
    http.finishData(0, 500, "");
    EXPECT_THAT(streams.logged(),
                ElementsAre(std::string(kAgentCheckBlock) +
                            " : NSURLConnection failed for this request : (null) and status code : 500"));
}

TEST_F(AgentCheck, reportsFailureWhenApplyingBreaksOff) {
    start();
    fakes::FailingStreams failing(streams, 1);
    platform::ports().standardStreams = &failing;

    http.finishData(0, 200, R"({"representation":{"AGENT":{"update_needed":true}}})");

    EXPECT_THAT(answers, ElementsAre(false));
    EXPECT_THAT(streams.logged(), ElementsAre(exceptionLine(kAgentCheckBlock, "write failed")));
    EXPECT_FALSE(session.isUpdateNeeded()); // the answer is logged before it is used
}

} // namespace
} // namespace lumora
