#include "webhost/join_url.h"
#include "webhost/web_host_test.h"

namespace lumora {
namespace {

class JoinUrl : public WebHostTest {};

TEST_F(JoinUrl, isServerAndPath) { EXPECT_EQ(joinUrl(), "https://server.example/join"); }

TEST_F(JoinUrl, carriesATokenUnescaped) {
    configure("server.example", "join/page.html", "a b&c=%ü");

    EXPECT_EQ(joinUrl(), "https://server.example/join/page.html?lumora_token=a b&c=%ü");
}

TEST_F(JoinUrl, hasNoQueryForAnEmptyToken) {
    configure("server.example", "join", "");

    EXPECT_EQ(joinUrl(), "https://server.example/join");
}

TEST_F(JoinUrl, isNotTrimmed) {
    configure(" server.example ", " join", "t");

    EXPECT_EQ(joinUrl(), "https:// server.example / join?lumora_token=t");
}

TEST_F(JoinUrl, gainsNothingFromAbsentValues) {
    configure(std::nullopt, std::nullopt);

    EXPECT_EQ(joinUrl(), "https:///");
}

TEST_F(JoinUrl, isAskedForWithACachedCopyWelcomeWithinTenSeconds) {
    const auto request = joinRequest("https://server.example/join");

    EXPECT_EQ(request.url, "https://server.example/join");
    EXPECT_EQ(request.cachePolicy, platform::HttpCachePolicy::returnCacheDataElseLoad);
    EXPECT_EQ(request.timeout, std::chrono::seconds(10));
}

TEST_F(JoinUrl, isConfiguredByServerAndPath) {
    EXPECT_TRUE(isWebServerNameAndPathKnown());
    EXPECT_TRUE(controller->isWebServerConfigured());
}

TEST_F(JoinUrl, isNotConfiguredByAbsentEmptyOrBlankValues) {
    for (const auto& value :
         {std::optional<std::string>(), std::optional<std::string>(""), std::optional<std::string>("   "),
          std::optional<std::string>("\t\n\r\u00a0\u2028")}) {
        configure(value, "join");
        EXPECT_FALSE(controller->isWebServerConfigured());
        configure("server.example", value);
        EXPECT_FALSE(controller->isWebServerConfigured());
    }
}

TEST_F(JoinUrl, isConfiguredByTextBetweenBlanks) {
    configure(" server.example\n", "\tjoin ");

    EXPECT_TRUE(controller->isWebServerConfigured());
}

} // namespace
} // namespace lumora
