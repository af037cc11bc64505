#include "support/another_process.h"
#include "support/eventually.h"
#include "support/preferences_world.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <iostream>
#include <thread>

namespace lumora::contract {
namespace {

using platform::PreferenceLevel;
using platform::PropertyListDictionary;
using platform::PropertyListValue;
using testing::Pair;
using testing::UnorderedElementsAre;

constexpr const char* kDomain = PreferencesWorld::kDomain;
constexpr const char* kOtherDomain = PreferencesWorld::kOtherDomain;
constexpr auto kUser = PreferenceLevel::currentUserAnyHost;
constexpr auto kSystem = PreferenceLevel::anyUserAnyHost;

constexpr int kThreads = 2;
constexpr int kKeys = 100;

std::string keyOf(const std::string& process, int thread, int key) {
    return fmt::format("{}-{}-{}", process, thread, key);
}

class PreferencesContract : public testing::Test {
  protected:
    PreferencesWorld world_;
};

TEST_F(PreferencesContract, aLaunchArgumentWinsOverTheUsersValue) {
    world_.store({{"a", "user"}, {"b", "user"}});

    AnotherProcess application({"tell", "a", "b", "c", "-a", "argument"});

    EXPECT_EQ("text argument", application.nextLine());
    EXPECT_EQ("text user", application.nextLine());
    EXPECT_EQ("absent\n", application.output());
}

TEST_F(PreferencesContract, launchArgumentsAreAlwaysStrings) {
    AnotherProcess application({"tell", "n", "yes", "-n", "42", "-yes", "YES"});

    EXPECT_EQ("text 42\ntext YES\n", application.output());
}

TEST_F(PreferencesContract, theUsersValueWinsOverTheSystems) {
    if (!world_.storeForAllUsers({{"a", "system"}, {"b", "system"}}))
        GTEST_SKIP() << "the level of all users is this machine's: no test writes there";
    world_.store({{"a", "user"}});
    const auto preferences = world_.open();

    EXPECT_EQ(PropertyListValue("user"), preferences->objectForKey("a"));
    EXPECT_EQ(PropertyListValue("system"), preferences->objectForKey("b"));
    EXPECT_EQ(std::nullopt, preferences->objectForKey("c"));
}

TEST_F(PreferencesContract, anEmptyValueIsAValue) {
    static_cast<void>(world_.storeForAllUsers({{"token", "system"}}));
    {
        const auto preferences = world_.open();
        preferences->setObject("token", "");
        preferences->synchronize();
    }

    EXPECT_EQ(PropertyListValue(""), world_.open()->objectForKey("token"));
    EXPECT_EQ("text \n", AnotherProcess({"tell", "token"}).output());
}

TEST_F(PreferencesContract, valuesKeepTheirTypesAndOtherKeysStay) {
    const PropertyListValue list(platform::PropertyListArray{"kept", std::int64_t{1}});
    world_.store({{"other", list}});
    const auto preferences = world_.open();

    preferences->setObject("port", std::int64_t{8080});
    preferences->setObject("authRequired", true);
    preferences->setObject("password", "a<b>&\"c\" ");
    EXPECT_EQ(PropertyListValue(std::int64_t{8080}), preferences->objectForKey("port"))
        << "before it is on disk";
    preferences->synchronize();

    EXPECT_THAT(world_.stored(),
                UnorderedElementsAre(Pair("other", list), Pair("port", PropertyListValue(std::int64_t{8080})),
                                     Pair("authRequired", PropertyListValue(true)),
                                     Pair("password", PropertyListValue("a<b>&\"c\" "))));
    EXPECT_EQ("number 8080\nboolean 1\ntext a<b>&\"c\" \nother\n",
              AnotherProcess({"tell", "port", "authRequired", "password", "other"}).output());
}

TEST_F(PreferencesContract, aLevelWithoutRightsFailsAloneAndSilently) {
    const std::string told = AnotherProcess({"writeLevels"}).output();
    if (told == "superuser")
        GTEST_SKIP() << "the superuser may write every level";

    EXPECT_EQ("user written, system not", told);
    EXPECT_THAT(world_.stored(), UnorderedElementsAre(Pair("k", PropertyListValue("v"))));
    EXPECT_FALSE(std::filesystem::exists(world_.fileOfAllUsers()));
}

TEST_F(PreferencesContract, aLevelIsWrittenByItsName) {
    const auto preferences = world_.open();

    preferences->setValue("k", "v", kDomain, kUser);
    ASSERT_TRUE(preferences->synchronize(kDomain, kUser));

    EXPECT_THAT(world_.stored(), UnorderedElementsAre(Pair("k", PropertyListValue("v"))));
    EXPECT_EQ("text v\n", AnotherProcess({"tell", "k"}).output());
}

TEST_F(PreferencesContract, otherDomainsAreStoredApart) {
    const auto preferences = world_.open();

    preferences->setValue("k", "v", kOtherDomain, kUser);
    ASSERT_TRUE(preferences->synchronize(kOtherDomain, kUser));

    EXPECT_THAT(world_.stored(kOtherDomain), UnorderedElementsAre(Pair("k", PropertyListValue("v"))));
    EXPECT_EQ(std::nullopt, preferences->objectForKey("k"));
}

TEST_F(PreferencesContract, whatAnotherProcessWritesComesToBeSeen) {
    const auto preferences = world_.open();
    EXPECT_EQ(std::nullopt, preferences->objectForKey("k"));
    for (const char* value : {"one", "two", "six"}) {
        ASSERT_EQ("", AnotherProcess({"write", "k", value}).output());

        EXPECT_TRUE(eventually([&] {
            preferences
                ->synchronize(); // at the latest by this; how soon without it is each system's own matter
            return preferences->objectForKey("k") == PropertyListValue(value);
        })) << value;
    }
}

TEST_F(PreferencesContract, twoProcessesOfSeveralThreadsLoseNoWrite) {
    AnotherProcess first({"writeMany", "a"});
    AnotherProcess second({"writeMany", "b"});

    EXPECT_EQ("", first.output());
    EXPECT_EQ("", second.output());
    const PropertyListDictionary all = world_.stored();
    EXPECT_EQ(2U * kThreads * kKeys, all.size());
    for (const char* process : {"a", "b"}) {
        for (int thread = 0; thread < kThreads; ++thread) {
            for (int key = 0; key < kKeys; ++key)
                ASSERT_TRUE(all.contains(keyOf(process, thread, key)));
        }
    }
}

TEST_F(PreferencesContract, readersNeverMissWhatStands) {
    world_.store({{"always", "here"}});
    std::atomic<bool> done = false;
    std::thread writer([&] {
        const auto preferences = world_.open();
        for (int round = 0; round < 200; ++round) {
            preferences->setObject("k", std::string(static_cast<std::size_t>(round * 37), 'x'));
            preferences->synchronize();
        }
        done = true;
    });
    const auto reader = world_.open();
    bool missed = false;
    while (!done)
        missed = missed || reader->objectForKey("always") != PropertyListValue("here");
    writer.join();

    EXPECT_FALSE(missed);
}

std::string toldOf(const std::optional<PropertyListValue>& value) {
    if (!value)
        return "absent";
    if (const auto* text = value->as<std::string>())
        return "text " + *text;
    if (const auto* number = value->as<std::int64_t>())
        return fmt::format("number {}", *number);
    if (const auto* flag = value->as<bool>())
        return fmt::format("boolean {}", int{*flag});
    return "other";
}

/// Prints the values of the keys before the first launch argument.
int tell(const std::vector<std::string>& arguments) {
    PreferencesWorld world;
    const auto preferences = world.open(arguments);
    for (const std::string& key : arguments) {
        if (key.starts_with('-'))
            break;
        std::cout << toldOf(preferences->objectForKey(key)) << '\n';
    }
    return 0;
}

int writeMany(const std::string& process) {
    PreferencesWorld world;
    const auto preferences = world.open();
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            for (int key = 0; key < kKeys; ++key) {
                preferences->setObject(keyOf(process, thread, key), std::int64_t{key});
                preferences->synchronize();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    return 0;
}

int writeLevels() {
    PreferencesWorld world;
    if (!world.becomeOrdinaryUser()) {
        std::cout << "superuser";
        return 0;
    }
    const auto preferences = world.open();
    preferences->setValue("k", "v", kDomain, kUser);
    preferences->setValue("k", "v", kDomain, kSystem);
    std::cout << "user " << (preferences->synchronize(kDomain, kUser) ? "written" : "not") << ", system "
              << (preferences->synchronize(kDomain, kSystem) ? "written" : "not");
    return 0;
}

} // namespace

int asAnotherProcess(const std::vector<std::string>& arguments) {
    const std::string& what = arguments.front();
    if (what == "tell")
        return tell({arguments.begin() + 1, arguments.end()});
    if (what == "writeMany")
        return writeMany(arguments.at(1));
    if (what == "writeLevels")
        return writeLevels();
    if (what != "write")
        return 1;
    PreferencesWorld world;
    const auto preferences = world.open();
    preferences->setObject(arguments.at(1), arguments.at(2));
    preferences->synchronize();
    return 0;
}

} // namespace lumora::contract
