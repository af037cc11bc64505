#include "bridge/joins_test.h"

namespace lumora {
namespace {

constexpr const char* kUndecodable =
    "handleMessageFromWebView(message:) : handleMessageFromWebView(message:) : Error Unable to decode "
    "the join details";
constexpr const char* kInvalidJoinKey =
    "handleMessageFromWebView(message:) : Invalid Session Key from Join Page";
constexpr const char* kUpdateFailed =
    "handleMessageFromWebView(message:) : Unable to update Ovra Tessel Agent";
constexpr const char* kSettingsFile = "/Users/casey/Library/Logs/OvraTessel/ConnectionSettings.plist";

TEST_F(Joins, fromTheJoinPageFillTheSessionRecordAndAskForTheAgentsUpdate) {
    post("sendJoinDetailsToNative", joinBody("123456789"));

    EXPECT_EQ(session.sessionKey(), "123456789");
    EXPECT_EQ(session.name(), "casey@example.com");
    EXPECT_EQ(session.dcName(), "eu");
    EXPECT_EQ(session.webServerName(), "configured.example");
    EXPECT_TRUE(updateCheckStarted());
    EXPECT_TRUE(http.tasks[0].request.url->starts_with("https://configured.example/"));
    EXPECT_EQ(streams.printed(), Lines{sharedDetailsLine("123456789")});
    EXPECT_TRUE(page.journal.empty());
}

TEST_F(Joins, fromTheJoinPageTakeTheEmailAsTheNameEvenBesideAStoredOne) {
    preferences.user.emplace("name", "Casey");

    post("sendJoinDetailsToNative", joinBody("123456789"));

    EXPECT_EQ(session.name(), "casey@example.com");
}

TEST_F(Joins, fromTheJoinPageStoreTheKeyAsAnInteger) {
    post("sendJoinDetailsToNative", joinBody("1234567890"));

    EXPECT_EQ(preferences.user.at("activeSessionKey"), platform::PropertyListValue(std::int64_t{1234567890}));
    EXPECT_EQ(preferences.journal, (Lines{"set activeSessionKey", "synchronize"}));
}

TEST_F(Joins, fromTheJoinPageStoreTheKeyBeforeTheyTellOfIt) {
    std::vector<Lines> printedAtEach;
    preferences.onSynchronize = [&] { printedAtEach.push_back(streams.printed()); };

    post("sendJoinDetailsToNative", joinBody("123456789"));

    EXPECT_EQ(printedAtEach, std::vector<Lines>{Lines{}});
}

TEST_F(Joins, fromTheJoinPageTakeKeysOfNineAndTenCharacters) {
    for (const char* key : {"123456789", "1234567890", "-12345678", "-123456789", "1e9"}) {
        post("sendJoinDetailsToNative", joinBody(key));
        ASSERT_EQ(http.tasks.size(), 1U) << key;
        http.tasks.clear();
    }
    EXPECT_EQ(session.sessionKey(), "1000000000");
}

TEST_F(Joins, fromTheJoinPageRefuseOtherKeys) {
    for (const char* key :
         {"0", "12345678", "12345678901", "-1234567", "-1234567890", "9223372036854775807"}) {
        forgetLines();
        post("sendJoinDetailsToNative", joinBody(key));
        EXPECT_EQ(streams.printed(), (Lines{sharedDetailsLine(key), kInvalidJoinKey})) << key;
        EXPECT_TRUE(http.tasks.empty()) << key;
    }
}

TEST_F(Joins, withRefusedKeyStillBecomesActive) {
    storeProxy();

    post("sendJoinDetailsToNative", joinBody("12345678"));
    post("getActiveSessionKey");

    EXPECT_EQ(page.journal, Lines{R"(script window.receiveActiveSessionKey("12345678");)"});
    EXPECT_EQ(session.sessionKey(), std::nullopt);
    EXPECT_EQ(session.name(), std::nullopt);
    EXPECT_EQ(session.dcName(), "shown");
    EXPECT_EQ(session.webServerName(), "shown.example");
    EXPECT_TRUE(files.journal.empty());
}

TEST_F(Joins, fromTheJoinPageThatDoNotDecodeChangeNothing) {
    storeProxy();
    const Lines bodies{"",
                       "123456789",
                       R"({"sessionKey":"123456789","email":"c"})",
                       R"({"sessionKey":123456789})",
                       R"({"email":"c"})",
                       R"({"sessionKey":123456789,"email":"c","dc":1})"};
    for (const auto& body : bodies)
        post("sendJoinDetailsToNative", body);

    EXPECT_EQ(streams.printed(), Lines(bodies.size(), kUndecodable));
    EXPECT_TRUE(preferences.journal.empty());
    EXPECT_EQ(session.sessionKey(), std::nullopt);
    EXPECT_TRUE(http.tasks.empty());
    EXPECT_TRUE(files.journal.empty());
}

TEST_F(Joins, withANullDataCentreTakeTheConfiguredOne) {
    post("sendJoinDetailsToNative", joinBody("123456789", R"(,"dc":null)"));

    EXPECT_EQ(session.dcName(), "eu");
    EXPECT_EQ(session.webServerName(), "configured.example");
}

TEST_F(Joins, withoutADataCentreAnywhereForgetTheOneInUse) {
    session.setPlistDcName(std::nullopt);
    session.setPlistWebServerName(std::nullopt);

    post("sendJoinDetailsToNative", joinBody("123456789"));

    EXPECT_EQ(session.dcName(), std::nullopt);
    EXPECT_EQ(session.webServerName(), std::nullopt);
    EXPECT_EQ(http.tasks.size(), 1U);
}

TEST_F(Joins, withADataCentreTakeItsServer) {
    post("sendJoinDetailsToNative", joinBody("123456789", R"(,"dc":"jp")"));

    EXPECT_EQ(session.dcName(), "jp");
    EXPECT_EQ(session.webServerName(), "jp.ovratessel.example");
    EXPECT_EQ(session.plistDcName(), "eu");
    EXPECT_TRUE(http.tasks.at(0).request.url->starts_with("https://jp.ovratessel.example/"));
}

TEST_F(Joins, withAnEmptyDataCentreLookTheEmptyNameUp) {
    post("sendJoinDetailsToNative", joinBody("123456789", R"(,"dc":"")"));

    EXPECT_EQ(session.dcName(), "");
    EXPECT_EQ(session.webServerName(), ".dev.ovratessel.example");
}

TEST_F(Joins, fromTheJoinPageGoOnWhenTheProxySettingsCannotBeWritten) {
    storeProxy();
    files.failCreateFolder("/Users/casey/Library/Logs/OvraTessel");

    post("sendJoinDetailsToNative", joinBody("123456789", R"(,"dc":"jp")"));

    EXPECT_EQ(
        streams.printed(),
        (Lines{sharedDetailsLine("123456789"),
               "setupProxyDetails() : Unable to create the connection plist file at the desired path."}));
    EXPECT_EQ(session.sessionKey(), "123456789");
    EXPECT_EQ(http.tasks.size(), 1U);
}

TEST_F(Joins, fromEitherPageWriteTheProxySettings) {
    storeProxy();
    post("sendJoinDetailsToNative", joinBody("123456789"));
    EXPECT_NE(files.file(kSettingsFile), nullptr);

    files.journal.clear();
    post("sendRRSessionKeyToNative", "123456789");
    EXPECT_EQ(files.journal, Lines{std::string("overwrite ") + kSettingsFile});
}

TEST_F(Joins, fromEitherPageWriteTheProxySettingsBeforeTheRecordIsFilled) {
    storeProxy();
    std::vector<SessionDetails::Text> keys;
    propertyLists.onSerialize = [&] { keys.push_back(session.sessionKey()); };

    post("sendJoinDetailsToNative", joinBody("123456789"));
    post("sendRRSessionKeyToNative", "abcdefghi");

    EXPECT_EQ(keys, (std::vector<SessionDetails::Text>{std::nullopt, "123456789"}));
}

TEST_F(Joins, fromTheJoinPageHandOverToTheAgentOnlyWhenTheCheckHasSucceeded) {
    post("sendJoinDetailsToNative", joinBody("123456789"));
    EXPECT_TRUE(workspace.launches.empty());

    http.finishData(0, 200, "{}");

    EXPECT_EQ(workspace.launches.size(), 1U);
    EXPECT_EQ(streams.printed(), Lines{sharedDetailsLine("123456789")});
    EXPECT_TRUE(loop.mainWork.empty()); // on the answer's own thread
}

TEST_F(Joins, fromTheJoinPageLogAFailedCheckAndLeaveTheAgentAlone) {
    post("sendJoinDetailsToNative", joinBody("123456789"));

    http.finishData(0, 500, "");

    EXPECT_EQ(streams.printed(), (Lines{sharedDetailsLine("123456789"), kUpdateFailed}));
    EXPECT_TRUE(workspace.launches.empty());
    EXPECT_EQ(session.sessionKey(), "123456789");
}

TEST_F(Joins, letNothingEscapeFromTheHandOver) {
    workspace.throwOnLaunch = true;
    post("sendJoinDetailsToNative", joinBody("123456789"));

    EXPECT_NO_THROW(http.finishData(0, 200, "{}"));
}

TEST_F(Joins, thatOverlapEachHandOver) {
    post("sendJoinDetailsToNative", joinBody("123456789"));
    post("sendRRSessionKeyToNative", "abcdefghi");
    EXPECT_EQ(session.sessionKey(), "abcdefghi");
    ASSERT_EQ(http.tasks.size(), 2U);

    http.finishData(1, 200, "{}");
    http.finishData(0, 200, "{}");

    EXPECT_EQ(workspace.launches.size(), 2U);
}

} // namespace
} // namespace lumora
