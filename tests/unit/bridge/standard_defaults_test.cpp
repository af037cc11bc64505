#include "bridge/standard_defaults.h"
#include "fakes/core_test.h"

namespace lumora {
namespace {

class StandardDefaults : public CoreTest {};

TEST_F(StandardDefaults, readTextAsItIs) {
    preferences.user.emplace("key", "  text ");
    preferences.system.emplace("empty", "");

    EXPECT_EQ(standard_defaults::stringForKey("key"), "  text ");
    EXPECT_EQ(standard_defaults::stringForKey("empty"), "");
}

TEST_F(StandardDefaults, readNumbersInDecimalAndBooleansAsOneOrZero) {
    preferences.user.emplace("integer", std::int64_t{-1234567890123});
    preferences.user.emplace("real", 1.5);
    preferences.user.emplace("yes", true);
    preferences.user.emplace("no", false);

    EXPECT_EQ(standard_defaults::stringForKey("integer"), "-1234567890123");
    EXPECT_EQ(standard_defaults::stringForKey("real"), "1.5");
    EXPECT_EQ(standard_defaults::stringForKey("yes"), "1");
    EXPECT_EQ(standard_defaults::stringForKey("no"), "0");
}

TEST_F(StandardDefaults, countOtherTypesAsAbsent) {
    preferences.user.emplace("data", platform::PropertyListData{{1}});
    preferences.user.emplace("date", platform::PropertyListDate{1});
    preferences.user.emplace("list", platform::PropertyListArray{"a"});
    preferences.user.emplace("dictionary", platform::PropertyListDictionary{{"a", "b"}});

    for (const char* key : {"missing", "data", "date", "list", "dictionary"})
        EXPECT_EQ(standard_defaults::stringForKey(key), std::nullopt) << key;
}

TEST_F(StandardDefaults, endAGroupOfWritesWithOneSynchronisation) {
    standard_defaults::store({{"b", "1"}, {"a", std::int64_t{2}}});

    EXPECT_EQ(preferences.journal, (std::vector<std::string>{"set b", "set a", "synchronize"}));
}

TEST_F(StandardDefaults, areClearedByAnEmptyStringThatHidesLowerLevels) {
    preferences.system.emplace("key", "lower");

    standard_defaults::clear("key");

    EXPECT_EQ(standard_defaults::stringForKey("key"), "");
    EXPECT_EQ(preferences.journal, (std::vector<std::string>{"set key", "synchronize"}));
}

} // namespace
} // namespace lumora
