#include "bridge/joins_test.h"

namespace lumora {
namespace {

constexpr const char* kInvalidRequestKey =
    "handleMessageFromWebView(message:) : Invalid Session Key from Raise a Request Page";

TEST_F(Joins, fromTheRequestPageTakeTheBodyAsTheKey) {
    post("sendRRSessionKeyToNative", "123456789");

    EXPECT_EQ(session.sessionKey(), "123456789");
    EXPECT_TRUE(updateCheckStarted());
    EXPECT_TRUE(streams.printed().empty());
    EXPECT_TRUE(preferences.journal.empty());
    EXPECT_TRUE(page.journal.empty());
}

TEST_F(Joins, fromTheRequestPageLeaveDataCentreAndServer) {
    post("sendRRSessionKeyToNative", "123456789");

    EXPECT_EQ(session.dcName(), "shown");
    EXPECT_EQ(session.webServerName(), "shown.example");
}

TEST_F(Joins, fromTheRequestPageTakeNineOrTenCharactersOfAnyKind) {
    const Lines keys{
        "abcdefghi",
        "abcdefghij",
        "         ",
        "éèêëēĕėęě",
        "👩‍🚀👩‍🚀👩‍🚀👩‍🚀👩‍🚀👩‍🚀👩‍🚀👩‍🚀👩‍🚀",
        "e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301"};
    for (const auto& key : keys) {
        post("sendRRSessionKeyToNative", key);
        EXPECT_EQ(session.sessionKey(), key);
    }
    EXPECT_EQ(http.tasks.size(), keys.size());
}

TEST_F(Joins, fromTheRequestPageRefuseOtherLengths) {
    storeProxy();
    const Lines keys{
        "", "12345678", "12345678901", "éèêë", "👩‍🚀👩‍🚀", "{\"sessionKey\":123456789}"};
    for (const auto& key : keys)
        post("sendRRSessionKeyToNative", key);

    EXPECT_EQ(streams.printed(), Lines(keys.size(), kInvalidRequestKey));
    EXPECT_EQ(session.sessionKey(), std::nullopt);
    EXPECT_TRUE(http.tasks.empty());
    EXPECT_TRUE(files.journal.empty());
    EXPECT_TRUE(preferences.journal.empty());
}

TEST_F(Joins, fromTheRequestPageTakeTheStoredCustomerName) {
    session.setName("before");
    preferences.user.emplace("name", "Casey");

    post("sendRRSessionKeyToNative", "123456789");

    EXPECT_EQ(session.name(), "Casey");
}

TEST_F(Joins, fromTheRequestPageTakeAnEmptyStoredNameToo) {
    session.setName("before");
    preferences.user.emplace("name", "");

    post("sendRRSessionKeyToNative", "123456789");

    EXPECT_EQ(session.name(), "");
}

TEST_F(Joins, fromTheRequestPageLeaveTheNameWithoutAStoredOne) {
    session.setName("before");
    post("sendRRSessionKeyToNative", "123456789");
    EXPECT_EQ(session.name(), "before");

    preferences.user.emplace("name", data());
    post("sendRRSessionKeyToNative", "123456789");
    EXPECT_EQ(session.name(), "before");
}

TEST_F(Joins, fromTheRequestPageHandOverAfterAGoodAnswer) {
    post("sendRRSessionKeyToNative", "123456789");

    http.finishData(0, 200, "{}");

    EXPECT_EQ(workspace.launches.size(), 1U);
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(Joins, fromTheRequestPageDoNotMentionAFailedCheck) {
    post("sendRRSessionKeyToNative", "123456789");

    http.finishData(0, 500, "");

    EXPECT_TRUE(streams.printed().empty());
    EXPECT_TRUE(workspace.launches.empty());
}

} // namespace
} // namespace lumora
