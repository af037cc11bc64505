#include "config/session_details.h"
#include "config/utils.h"
#include "fakes/core_test.h"
#include "fakes/log_lines.h"

#include <gmock/gmock.h>

namespace lumora {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kFolder = "/Users/casey/Library/Application Support/OvraLumoraNativeFolder/";

std::string notFound(const std::string& key) {
    return "+[Utils preferenceForKey:] : Key '" + key +
           "' not found in any defaults domain (managed/user/system)";
}

std::string resolved(const std::string& key, const std::string& value) {
    return "+[Utils preferenceForKey:] : Key '" + key +
           "' resolved via NSUserDefaults search list (managed/user/system): " + value;
}

/// The guard's line after a preference that could not be read.
std::string exceptionLine(const std::string& operation) {
    return fakes::exceptionLine(operation, "defaults unavailable");
}

// --- one key ------------------------------------------------------------------------------------------------------

class PreferenceForKey : public CoreTest {};

TEST_F(PreferenceForKey, missingKeyIsLoggedAndAbsent) {
    EXPECT_EQ(Utils::preferenceForKey("DC"), std::nullopt);

    EXPECT_THAT(streams.logged(), ElementsAre(notFound("DC")));
}

TEST_F(PreferenceForKey, textIsUsedAsItIs) {
    preferences.user.insert_or_assign("DC", " eu ");

    EXPECT_EQ(Utils::preferenceForKey("DC"), " eu ");

    EXPECT_THAT(streams.logged(), ElementsAre(resolved("DC", " eu ")));
}

TEST_F(PreferenceForKey, emptyTextIsPresent) {
    preferences.user.insert_or_assign("LumoraToken", "");

    EXPECT_EQ(Utils::preferenceForKey("LumoraToken"), "");

    EXPECT_THAT(streams.logged(), ElementsAre(resolved("LumoraToken", "")));
}

TEST_F(PreferenceForKey, numbersBecomeDecimalText) {
    preferences.user.insert_or_assign("DC", std::int64_t{12});
    preferences.user.insert_or_assign("WebServer", 1.5);
    preferences.user.insert_or_assign("pathForLumora", true);

    EXPECT_EQ(Utils::preferenceForKey("DC"), "12");
    EXPECT_EQ(Utils::preferenceForKey("WebServer"), "1.5");
    EXPECT_EQ(Utils::preferenceForKey("pathForLumora"), "1");

    EXPECT_THAT(streams.logged(), ElementsAre(resolved("DC", "12"), resolved("WebServer", "1.5"),
                                              resolved("pathForLumora", "1")));
}

TEST_F(PreferenceForKey, anythingElseIsFormatted) {
    preferences.user.insert_or_assign("DC", platform::PropertyListArray{"eu", std::int64_t{1}});

    EXPECT_EQ(Utils::preferenceForKey("DC"), R"(["eu",1])");
}

TEST_F(PreferenceForKey, launchArgumentWinsOverEveryLevel) {
    preferences.system.insert_or_assign("DC", "in");
    EXPECT_EQ(Utils::preferenceForKey("DC"), "in");
    preferences.user.insert_or_assign("DC", "eu");
    EXPECT_EQ(Utils::preferenceForKey("DC"), "eu");
    preferences.managed.insert_or_assign("DC", "jp");
    EXPECT_EQ(Utils::preferenceForKey("DC"), "jp");
    preferences.arguments.insert_or_assign("DC", "com");
    EXPECT_EQ(Utils::preferenceForKey("DC"), "com");
}

// --- copying to both levels ---------------------------------------------------------------------------------------

class SyncPreference : public CoreTest {};

TEST_F(SyncPreference, writesTheUserLevelAndThenTheSystemLevel) {
    Utils::syncPreferenceToAllLevels("DC", "eu");

    EXPECT_THAT(preferences.journal, ElementsAre("setValue com.ovra.tessel.OvraTesselLumora user DC",
                                                 "setValue com.ovra.tessel.OvraTesselLumora system DC"));
    EXPECT_EQ(preferences.user.at("DC"), platform::PropertyListValue("eu"));
    EXPECT_EQ(preferences.system.at("DC"), platform::PropertyListValue("eu"));
    EXPECT_THAT(streams.logged(), IsEmpty());
}

TEST_F(SyncPreference, writesTheEmptyText) {
    Utils::syncPreferenceToAllLevels("LumoraToken", "");

    EXPECT_EQ(preferences.user.at("LumoraToken"), platform::PropertyListValue(""));
}

TEST_F(SyncPreference, doesNothingWithoutKeyOrValue) {
    Utils::syncPreferenceToAllLevels(std::nullopt, "eu");
    Utils::syncPreferenceToAllLevels("DC", std::nullopt);

    EXPECT_THAT(preferences.journal, IsEmpty());
    EXPECT_THAT(streams.logged(), IsEmpty());
}

TEST_F(SyncPreference, usesTheBundlesIdentifierAsDomain) {
    bundles.identifier = "com.example.other";

    Utils::syncPreferenceToAllLevels("DC", "eu");

    EXPECT_THAT(preferences.journal,
                ElementsAre("setValue com.example.other user DC", "setValue com.example.other system DC"));
}

TEST_F(SyncPreference, fallsBackToTheFixedDomain) {
    bundles.identifier = std::nullopt;

    Utils::syncPreferenceToAllLevels("DC", "eu");

    EXPECT_THAT(preferences.journal, ElementsAre("setValue com.ovra.tessel.OvraTesselLumora user DC",
                                                 "setValue com.ovra.tessel.OvraTesselLumora system DC"));
}

class SyncConfig : public CoreTest {};

TEST_F(SyncConfig, copiesInTheFixedOrderAndFlushesOnceAtTheEnd) {
    bundles.identifier = "D";
    preferences.system.insert_or_assign("WebServer", "w");
    preferences.system.insert_or_assign("pathForLumora", "p");
    preferences.arguments.insert_or_assign("DC", "eu");
    preferences.managed.insert_or_assign("LumoraToken", std::int64_t{5});

    Utils::syncConfigToAllLevels();

    EXPECT_THAT(preferences.journal,
                ElementsAre("setValue D user LumoraToken", "setValue D system LumoraToken",
                            "setValue D user DC", "setValue D system DC", "setValue D user pathForLumora",
                            "setValue D system pathForLumora", "setValue D user WebServer",
                            "setValue D system WebServer", "flush D user", "flush D system"));
    EXPECT_EQ(preferences.user.at("LumoraToken"), platform::PropertyListValue("5"));
    EXPECT_THAT(
        streams.logged(),
        ElementsAre(resolved("LumoraToken", "5"), resolved("DC", "eu"), resolved("pathForLumora", "p"),
                    resolved("WebServer", "w"),
                    "+[Utils syncConfigToAllLevels] : Config synced to both user-level and system-level "
                    "preferences."));
}

TEST_F(SyncConfig, emptyValueCountsAsFound) {
    bundles.identifier = "D";
    preferences.user.insert_or_assign("LumoraToken", "");

    Utils::syncConfigToAllLevels();

    EXPECT_THAT(preferences.journal,
                ElementsAre("setValue D user LumoraToken", "setValue D system LumoraToken", "flush D user",
                            "flush D system"));
}

TEST_F(SyncConfig, withoutValuesNothingIsFlushed) {
    Utils::syncConfigToAllLevels();

    EXPECT_THAT(preferences.journal, IsEmpty());
    EXPECT_THAT(streams.logged(),
                ElementsAre(notFound("LumoraToken"), notFound("DC"), notFound("pathForLumora"),
                            notFound("WebServer"),
                            "+[Utils syncConfigToAllLevels] : No config values found to sync."));
}

TEST_F(SyncConfig, flushThatIsRefusedIsNoFailure) {
    /// The user level can be written; the system level refuses, as it does to all but administrators.
    class Refusing final : public platform::Preferences {
      public:
        std::vector<std::string> journal;
        std::optional<platform::PropertyListValue> objectForKey(const std::string& key) override {
            return key == "DC" ? std::optional<platform::PropertyListValue>("eu") : std::nullopt;
        }
        void setObject(const std::string&, const platform::PropertyListValue&) override {}
        void synchronize() override {}
        void setValue(const std::string& key, const platform::PropertyListValue&, const std::string&,
                      platform::PreferenceLevel level) override {
            if (level == platform::PreferenceLevel::currentUserAnyHost)
                journal.push_back(key);
        }
        bool synchronize(const std::string&, platform::PreferenceLevel level) override {
            return level == platform::PreferenceLevel::currentUserAnyHost;
        }
    } refusing;
    platform::ports().preferences = &refusing;

    Utils::syncConfigToAllLevels();

    EXPECT_THAT(refusing.journal, ElementsAre("DC"));
    EXPECT_EQ(
        streams.logged().back(),
        "+[Utils syncConfigToAllLevels] : Config synced to both user-level and system-level preferences.");
}

TEST_F(SyncConfig, exceptionIsLoggedUnderItsName) {
    preferences.throwOnRead = true;

    Utils::syncConfigToAllLevels();

    EXPECT_THAT(streams.logged(), ElementsAre(exceptionLine("+[Utils syncConfigToAllLevels]")));
    EXPECT_THAT(preferences.journal, IsEmpty());
}

// --- the start-up read --------------------------------------------------------------------------------------------

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
                            exceptionLine("+[Utils parseCommandLineArgs]")));
    EXPECT_EQ(session().ovraLumoraNativeFolder(), kFolder);
    EXPECT_EQ(session().customDomainEnabled(), std::nullopt);
}

} // namespace
} // namespace lumora
