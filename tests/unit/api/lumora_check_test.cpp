#include "api/update_check_test.h"
#include "fakes/failing_streams.h"

namespace lumora {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kLumoraCheckBlock = "-[ApiHandler checkLumoraUpdateWithCompletion:]_block_invoke";

class LumoraCheck : public UpdateCheckTest {
  protected:
    void start() { ApiHandler::getInstance().checkLumoraUpdate(keepAnswer()); }

    void answer(const std::string& representation) {
        start();
        http.finishData(http.tasks.size() - 1, 200, R"({"representation":)" + representation + "}");
    }

    std::optional<std::string> requestedUrl() {
        start();
        return http.tasks.back().request.url;
    }
};

constexpr const char* kUrl = "https://com.ovratessel.example/api/v1/customer_plugin/"
                             "check_update?os=mac&format=dmg&source=lumora&version=";

TEST_F(LumoraCheck, endsWithTheVersionWithoutAToken) {
    EXPECT_EQ(requestedUrl(), std::string(kUrl) + "1.0.0");
}

TEST_F(LumoraCheck, appendsATokenAsItIs) {
    session.setLumoraToken("a%2Bb+c=");

    EXPECT_EQ(requestedUrl(), std::string(kUrl) + "1.0.0&lumora_token=a%2Bb+c=");
}

TEST_F(LumoraCheck, appendsAnEmptyTokenToo) {
    session.setLumoraToken("");

    EXPECT_EQ(requestedUrl(), std::string(kUrl) + "1.0.0&lumora_token=");
}

TEST_F(LumoraCheck, makesNoAddressOfAValueThatNoUrlMayCarry) {
    session.setLumoraToken("two words");

    EXPECT_EQ(requestedUrl(), std::nullopt);
    http.failData(0, {"NSURLErrorDomain", -1000, "bad URL", {}});
    EXPECT_THAT(answers, ElementsAre(false));
    EXPECT_THAT(streams.logged(),
                ElementsAre(std::string(kLumoraCheckBlock) + " : Check Update failed : Error "
                                                             "Domain=NSURLErrorDomain Code=-1000 "
                                                             "\"bad URL\""));
}

TEST_F(LumoraCheck, namesAnUnknownVersionByTheNullPlaceholder) {
    session.setLocalOvraLumoraAppVersion(std::nullopt);

    EXPECT_EQ(requestedUrl(), std::string(kUrl) + "(null)");
}

TEST_F(LumoraCheck, goesToTheComHostWithoutAServerAndKeepsIt) {
    session.setWebServerName(std::nullopt);

    EXPECT_EQ(requestedUrl(), std::string(kUrl) + "1.0.0");
    EXPECT_EQ(session.webServerName(), "com.ovratessel.example");
}

TEST_F(LumoraCheck, keepsAnEmptyServer) {
    session.setWebServerName("");

    EXPECT_EQ(requestedUrl(),
              "https:///api/v1/customer_plugin/check_update?os=mac&format=dmg&source=lumora&version=1.0.0");
    EXPECT_EQ(session.webServerName(), "");
}

TEST_F(LumoraCheck, storesTheAddressAndThatNoUpdateIsNeeded) {
    answer(R"({"download_url":"https://cdn.example/OvraTesselLumora.dmg","other":[],"update":false})");

    EXPECT_EQ(session.lumoraDownloadUrl(), "https://cdn.example/OvraTesselLumora.dmg");
    EXPECT_FALSE(session.lumoraUpdateNeeded());
    EXPECT_THAT(answers, ElementsAre(true));
    EXPECT_EQ(http.tasks.size(), 1U);
}

TEST_F(LumoraCheck, logsTheWholeAnswer) {
    start();

    http.finishData(0, 200, R"({ "other": 1.5, "representation": { "update": 0 } })");

    EXPECT_THAT(streams.logged(), ElementsAre(std::string(kLumoraCheckBlock) +
                                              R"( response :  {"other":1.5,"representation":{"update":0}})"));
}

TEST_F(LumoraCheck, logsTheAnswerBeforeItIsUsed) {
    start();
    fakes::FailingStreams failing(streams, 1);
    platform::ports().standardStreams = &failing;

    http.finishData(0, 200, R"({"representation":{"update":true}})");

    EXPECT_THAT(answers, ElementsAre(false));
    EXPECT_THAT(streams.logged(), ElementsAre(fakes::exceptionLine(kLumoraCheckBlock, "write failed")));
    EXPECT_FALSE(session.lumoraUpdateNeeded());
}

TEST_F(LumoraCheck, repairsADoubledExtension) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"https://cdn.example/a.dmg", "https://cdn.example/a.dmg"},
        {"https://cdn.example/a.dmg.dmg", "https://cdn.example/a.dmg"},
        {"https://cdn.example/a.dmg.dmg.dmg", "https://cdn.example/a.dmg.dmg"},
        {"https://cdn.example/a.dmg.dmg.dmg.dmg", "https://cdn.example/a.dmg.dmg"},
        {"https://cdn.example/a.dmg.dmg/b.dmg.dmg?v=1", "https://cdn.example/a.dmg/b.dmg?v=1"},
        {"", ""},
    };
    for (const auto& [sent, stored] : cases) {
        answer(R"({"download_url":")" + sent + R"("})");
        EXPECT_EQ(session.lumoraDownloadUrl(), stored);
    }
}

TEST_F(LumoraCheck, keepsEarlierValuesWhereTheTypeDoesNotFit) {
    session.setLumoraDownloadUrl("https://earlier.example/a.dmg");
    for (const std::string value : {"null", "[true]", "{}"})
        answer(R"({"download_url":)" + value + R"(,"update":)" + value + "}");
    answer(R"({"download_url":7})");
    answer(R"([{"update":true}])");

    EXPECT_EQ(session.lumoraDownloadUrl(), "https://earlier.example/a.dmg");
    EXPECT_FALSE(session.lumoraUpdateNeeded());
    EXPECT_THAT(answers, ElementsAre(true, true, true, true, true));
}

TEST_F(LumoraCheck, startsTheStagingBeforeItReports) {
    std::size_t tasksThen = 0;
    ApiHandler::getInstance().checkLumoraUpdate([&](bool) { tasksThen = http.tasks.size(); });

    http.finishData(0, 200,
                    R"({"representation":{"download_url":"https://cdn.example/a.dmg","update":"yes"}})");

    EXPECT_TRUE(session.lumoraUpdateNeeded());
    EXPECT_EQ(tasksThen, 2U);
    ASSERT_EQ(http.tasks.size(), 2U);
    EXPECT_EQ(http.tasks[1].request.url, "https://cdn.example/a.dmg");
    EXPECT_TRUE(http.tasks[1].downloadCompletion);
    EXPECT_THAT(
        streams.logged(),
        ElementsAre(std::string(kLumoraCheckBlock) +
                        R"( response :  {"representation":{"download_url":"https://cdn.example/a.dmg",)"
                        R"("update":"yes"}})",
                    std::string(kLumoraCheckBlock) + " Ovra Lumora Updated Version Available ....",
                    "+[OvraLumoraUpdater getInstance] : Update Info Object Allocated",
                    "-[OvraLumoraUpdater downloadLumoradmg] : Ovra Lumora Dmg Url : "
                    "https://cdn.example/a.dmg"));
}

TEST_F(LumoraCheck, makesANewUpdaterForEveryPositiveAnswer) {
    answer(R"({"update":true})");
    answer(R"({"update":true})");

    const auto lines = streams.logged();
    EXPECT_EQ(std::count(lines.begin(), lines.end(),
                         "+[OvraLumoraUpdater getInstance] : Update Info Object Allocated"),
              2);
}

TEST_F(LumoraCheck, stagesAgainOnAJunk200AfterAPositiveAnswer) {
    answer(R"({"update":true})");
    ASSERT_EQ(http.tasks.size(), 2U);
    start();

    http.finishData(2, 200, "junk");

    EXPECT_EQ(http.tasks.size(), 4U); // nothing resets the field between checks
}

TEST_F(LumoraCheck, stagesNothingAfterAFailureThatFollowsAPositiveAnswer) {
    answer(R"({"update":true})");
    start();

    http.finishData(2, 503, "");

    EXPECT_EQ(http.tasks.size(), 3U);
    EXPECT_THAT(answers, ElementsAre(true, false));
}

} // namespace
} // namespace lumora
