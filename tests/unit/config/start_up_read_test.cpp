#include "config/preference_lines.h"
#include "config/session_details.h"
#include "config/utils.h"
#include "fakes/core_test.h"

#include <gmock/gmock.h>

namespace lumora {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kFolder = "/Users/casey/Library/Application Support/OvraLumoraNativeFolder/";

class StartUpRead : public CoreTest {
  protected:
    StartUpRead() {
        http.answerSynchronously = [](const auto&) {
            return platform::HttpAnswer{"{}", platform::HttpResponse{200, ""}, {}};
        };
    }

    SessionDetails& session() { return SessionDetails::getInstance(); }
};

TEST_F(StartUpRead, withoutPreferencesEveryFieldStaysAbsent) {
    Utils::parseCommandLineArgs();

    EXPECT_EQ(session().lumoraToken(), std::nullopt);
    EXPECT_EQ(session().plistDcName(), std::nullopt);
    EXPECT_EQ(session().dcName(), std::nullopt);
    EXPECT_EQ(session().webServerName(), std::nullopt);
    EXPECT_EQ(session().plistWebServerName(), std::nullopt);
    EXPECT_EQ(session().pathForLumora(), std::nullopt);
    EXPECT_EQ(session().staticWebServerName(), std::nullopt);
    EXPECT_EQ(session().customDomainEnabled(), "false");
    EXPECT_THAT(http.synchronousRequests, IsEmpty());
    EXPECT_THAT(
        streams.logged(),
        ElementsAre(
            "+[Utils parseCommandLineArgs] ******* Ovra Tesssel Lumora App Invoked By User.",
            notFound("LumoraToken"), notFound("DC"), notFound("pathForLumora"),
            "+[Utils parseCommandLineArgs] : Arguments Read From Preferences => WebServerName : (null) , "
            "LumoraToken : (null) , DC = (null)",
            notFound("LumoraToken"), notFound("DC"), notFound("pathForLumora"), notFound("WebServer"),
            "+[Utils syncConfigToAllLevels] : No config values found to sync.",
            "+[Utils parseCommandLineArgs] : Lumora Token is null, skipping getCustomDomain call."));
}

TEST_F(StartUpRead, setsFileManagerAndSupportFolder) {
    fakes::FakeFileManager otherFiles;
    session().setDefaultOvraDirectoryManager(&otherFiles);

    Utils::parseCommandLineArgs();

    EXPECT_EQ(session().defaultOvraDirectoryManager(), &files);
    EXPECT_EQ(session().ovraLumoraNativeFolder(), kFolder);
}

TEST_F(StartUpRead, readsEverythingInOrder) {
    bundles.identifier = "D";
    preferences.user.insert_or_assign("LumoraToken", "tok en");
    preferences.user.insert_or_assign("DC", "eu");
    preferences.user.insert_or_assign("pathForLumora", "join");

    Utils::parseCommandLineArgs();

    const std::string dcLine =
        "+[Utils findWebserverNameWithDCName:]  Dc = eu , WebServerName = eu.ovratessel.example";
    EXPECT_THAT(
        streams.logged(),
        ElementsAre(
            "+[Utils parseCommandLineArgs] ******* Ovra Tesssel Lumora App Invoked By User.",
            resolved("LumoraToken", "tok en"), resolved("DC", "eu"), dcLine, dcLine, dcLine, dcLine,
            resolved("pathForLumora", "join"),
            "+[Utils parseCommandLineArgs] : Arguments Read From Preferences => WebServerName : "
            "eu.ovratessel.example , LumoraToken : tok en , DC = eu",
            resolved("LumoraToken", "tok en"), resolved("DC", "eu"), resolved("pathForLumora", "join"),
            notFound("WebServer"),
            "+[Utils syncConfigToAllLevels] : Config synced to both user-level and system-level preferences.",
            "+[Utils getCustomDomain] : ********************** Fetching Custom Domain for session",
            "+[Utils getCustomDomain] : Requesting URL : https://eu.ovratessel.example/api/v2/service_domain"
            "?src=rs&lumora_token=tok%20en",
            "+[Utils getCustomDomain] : Request Url URL : https://eu.ovratessel.example/api/v2/service_domain"
            "?src=rs&lumora_token=tok%20en",
            "+[Utils getCustomDomain] : Status code : 200", "+[Utils getCustomDomain] : Response : (null)"));
    EXPECT_EQ(session().lumoraToken(), "tok en");
    EXPECT_EQ(session().plistDcName(), "eu");
    EXPECT_EQ(session().dcName(), "eu");
    EXPECT_EQ(session().webServerName(), "eu.ovratessel.example");
    EXPECT_EQ(session().plistWebServerName(), "eu.ovratessel.example");
    EXPECT_EQ(session().staticWebServerName(), "eu.ovratessel.example");
    EXPECT_EQ(session().pathForLumora(), "join");
    EXPECT_EQ(session().customDomainEnabled(), "false");
}

TEST_F(StartUpRead, configuredServerIsKeptBesideTheCustomDomain) {
    preferences.user.insert_or_assign("LumoraToken", "t");
    preferences.user.insert_or_assign("DC", "eu");
    http.answerSynchronously = [](const auto&) {
        return platform::HttpAnswer{R"({"representation":{"service_domain":"help.customer.example"}})",
                                    platform::HttpResponse{200, ""},
                                    {}};
    };

    Utils::parseCommandLineArgs();

    EXPECT_EQ(session().webServerName(), "help.customer.example");
    EXPECT_EQ(session().staticWebServerName(), "eu.ovratessel.example");
    EXPECT_EQ(session().plistWebServerName(), "eu.ovratessel.example");
    EXPECT_EQ(session().customDomainEnabled(), "true");
}

TEST_F(StartUpRead, numericDcIsTakenAsItsDecimalText) {
    preferences.user.insert_or_assign("DC", std::int64_t{12});

    Utils::parseCommandLineArgs();

    EXPECT_EQ(session().dcName(), "12");
    EXPECT_EQ(session().webServerName(), "12.dev.ovratessel.example");
}

TEST_F(StartUpRead, emptyTokenIsStoredButAsksForNoCustomDomain) {
    preferences.user.insert_or_assign("LumoraToken", "");

    Utils::parseCommandLineArgs();

    EXPECT_EQ(session().lumoraToken(), "");
    EXPECT_THAT(http.synchronousRequests, IsEmpty());
    EXPECT_EQ(streams.logged().back(),
              "+[Utils parseCommandLineArgs] : Lumora Token is null, skipping getCustomDomain call.");
}

TEST_F(StartUpRead, emptyDcIsLookedUp) {
    preferences.user.insert_or_assign("DC", "");

    Utils::parseCommandLineArgs();

    EXPECT_EQ(session().dcName(), "");
    EXPECT_EQ(session().webServerName(), ".dev.ovratessel.example");
}

TEST_F(StartUpRead, webServerPreferenceIsOnlyHandedOn) {
    bundles.identifier = "D";
    preferences.system.insert_or_assign("WebServer", "other.example");

    Utils::parseCommandLineArgs();

    EXPECT_THAT(preferences.journal, ElementsAre("setValue D user WebServer", "setValue D system WebServer",
                                                 "flush D user", "flush D system"));
    EXPECT_EQ(session().webServerName(), std::nullopt);
}

TEST_F(StartUpRead, missingKeysLeaveFieldsUntouched) {
    session().setLumoraToken("");
    session().setDcName("in");
    session().setWebServerName("in.ovratessel.example");
    session().setPathForLumora("join");

    Utils::parseCommandLineArgs();

    EXPECT_EQ(session().lumoraToken(), "");
    EXPECT_EQ(session().dcName(), "in");
    EXPECT_EQ(session().webServerName(), "in.ovratessel.example");
    EXPECT_EQ(session().staticWebServerName(), "in.ovratessel.example");
    EXPECT_EQ(session().pathForLumora(), "join");
}

TEST_F(StartUpRead, customDomainFlagIsResetByEveryRead) {
    session().setCustomDomainEnabled("true");

    Utils::parseCommandLineArgs();

    EXPECT_EQ(session().customDomainEnabled(), "false");
}

TEST_F(StartUpRead, exceptionStopsTheRest) {
    preferences.throwOnRead = true;

    Utils::parseCommandLineArgs();

    EXPECT_THAT(streams.logged(),
                ElementsAre("+[Utils parseCommandLineArgs] ******* Ovra Tesssel Lumora App Invoked By User.",
                            unreadableLine("+[Utils parseCommandLineArgs]")));
    EXPECT_EQ(session().ovraLumoraNativeFolder(), kFolder);
    EXPECT_EQ(session().customDomainEnabled(), std::nullopt);
}

} // namespace
} // namespace lumora
