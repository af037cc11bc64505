#include "config/preference_lines.h"
#include "config/utils.h"
#include "fakes/core_test.h"

#include <gmock/gmock.h>

namespace lumora {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

    EXPECT_THAT(streams.logged(), ElementsAre(unreadableLine("+[Utils syncConfigToAllLevels]")));
    EXPECT_THAT(preferences.journal, IsEmpty());
}

} // namespace
} // namespace lumora
