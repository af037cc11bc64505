#include "bridge/bridge_test.h"

namespace lumora {
namespace {

class ActiveSessionKey : public BridgeTest {};

TEST_F(ActiveSessionKey, thatWasNeverStoredIsLoggedAndNotAnswered) {
    post("getActiveSessionKey");

    EXPECT_TRUE(page.journal.empty());
    EXPECT_EQ(streams.printed(), Lines{"handleMessageFromWebView(message:) : No Session id is active."});
}

TEST_F(ActiveSessionKey, readsAnIntegerAsItsDecimalText) {
    preferences.user.emplace("activeSessionKey", std::int64_t{1234567890});

    post("getActiveSessionKey");

    EXPECT_EQ(page.journal, Lines{R"(script window.receiveActiveSessionKey("1234567890");)"});
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(ActiveSessionKey, isEmptyAndNotMissingAfterClearing) {
    preferences.user.emplace("activeSessionKey", std::int64_t{1234567890});

    post("clearActiveSessionKey");
    post("getActiveSessionKey");

    EXPECT_EQ(preferences.journal, (Lines{"set activeSessionKey", "synchronize"}));
    EXPECT_EQ(preferences.user.at("activeSessionKey"), platform::PropertyListValue(""));
    EXPECT_EQ(page.journal, Lines{R"(script window.receiveActiveSessionKey("");)"});
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(ActiveSessionKey, ofATypeWithoutTextCountsAsMissing) {
    preferences.user.emplace("activeSessionKey", data());

    post("getActiveSessionKey");

    EXPECT_TRUE(page.journal.empty());
    EXPECT_EQ(streams.printed(), Lines{"handleMessageFromWebView(message:) : No Session id is active."});
}

} // namespace
} // namespace lumora
