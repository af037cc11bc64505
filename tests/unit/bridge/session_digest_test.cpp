#include "bridge/bridge_test.h"
#include "config/session_details.h"

namespace lumora {
namespace {

using namespace std::string_literals;

class SessionDigest : public BridgeTest {};

TEST_F(SessionDigest, isEmptyBeforeAnyWasSent) {
    post("getRRSessionDigest");

    EXPECT_EQ(page.journal, Lines{R"(script window.receiveRRSessionDigest("");)"});
    EXPECT_EQ(SessionDetails::getInstance().sessionDigest(), "");
}

TEST_F(SessionDigest, isStoredAndSynchronised) {
    post("sendRRSessionDigestToNative", "abc");

    EXPECT_EQ(preferences.user.at("RRSessionDigest"), platform::PropertyListValue("abc"));
    EXPECT_EQ(preferences.journal, (Lines{"set RRSessionDigest", "synchronize"}));
    EXPECT_TRUE(page.journal.empty());
    EXPECT_EQ(SessionDetails::getInstance().sessionDigest(), std::nullopt);
}

TEST_F(SessionDigest, comesBackAndEntersTheSessionRecord) {
    preferences.user.emplace("RRSessionDigest", "abc");

    post("getRRSessionDigest");

    EXPECT_EQ(page.journal, Lines{R"(script window.receiveRRSessionDigest("abc");)"});
    EXPECT_EQ(SessionDetails::getInstance().sessionDigest(), "abc");
}

TEST_F(SessionDigest, entersTheSessionRecordBeforeThePageIsAnswered) {
    preferences.user.emplace("RRSessionDigest", "abc");
    SessionDetails::Text atReply;
    page.onCall = [&] { atReply = SessionDetails::getInstance().sessionDigest(); };

    post("getRRSessionDigest");

    EXPECT_EQ(atReply, "abc");
}

TEST_F(SessionDigest, keepsEveryByte) {
    post("sendRRSessionDigestToNative", "a\0b\nü"s);
    post("getRRSessionDigest");

    EXPECT_EQ(page.journal, Lines{"script window.receiveRRSessionDigest(\"a\0b\nü\");"s});
}

TEST_F(SessionDigest, isSplicedUnescaped) {
    post("sendRRSessionDigestToNative", R"(a"b\c)");
    post("getRRSessionDigest");

    EXPECT_EQ(page.journal, Lines{R"(script window.receiveRRSessionDigest("a"b\c");)"});
}

TEST_F(SessionDigest, readsANumberInDecimalAndOtherTypesAsNone) {
    preferences.user.emplace("RRSessionDigest", std::int64_t{42});
    post("getRRSessionDigest");
    preferences.user.insert_or_assign("RRSessionDigest", data());
    post("getRRSessionDigest");

    EXPECT_EQ(page.journal, (Lines{R"(script window.receiveRRSessionDigest("42");)",
                                   R"(script window.receiveRRSessionDigest("");)"}));
    EXPECT_EQ(SessionDetails::getInstance().sessionDigest(), "");
}

TEST_F(SessionDigest, isClearedByAnEmptyString) {
    preferences.user.emplace("RRSessionDigest", "abc");

    post("clearRRSessionDigest", "ignored");

    EXPECT_EQ(preferences.user.at("RRSessionDigest"), platform::PropertyListValue(""));
    EXPECT_EQ(preferences.journal, (Lines{"set RRSessionDigest", "synchronize"}));
    EXPECT_TRUE(page.journal.empty());
}

TEST_F(SessionDigest, clearingTheTokenLeavesAPresentEmptyValue) {
    preferences.managed.emplace("DC", "eu");
    preferences.system.emplace("LumoraToken", "token");

    post("clearLumoraDigest");

    EXPECT_EQ(preferences.objectForKey("LumoraToken"), platform::PropertyListValue(""));
    EXPECT_EQ(preferences.journal, (Lines{"set LumoraToken", "synchronize"}));
    EXPECT_TRUE(page.journal.empty());
}

} // namespace
} // namespace lumora
