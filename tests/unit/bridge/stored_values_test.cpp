#include "bridge/stored_values.h"
#include "fakes/core_test.h"

namespace lumora {
namespace {

class StoredPreferences : public CoreTest {};

TEST_F(StoredPreferences, serialiseWithTheirTypesInTheOrderAskedFor) {
    preferences.user.emplace("text", "a\"b");
    preferences.user.emplace("integer", std::int64_t{8080});
    preferences.user.emplace("flag", true);
    preferences.user.emplace("list", platform::PropertyListArray{"x", std::int64_t{1}});

    const auto json = StoredValues({"text", "missing", "integer", "flag", "list"}).serialize();

    ASSERT_TRUE(json);
    EXPECT_EQ(json.value(), R"({"text":"a\"b","missing":null,"integer":8080,"flag":true,"list":["x",1]})");
}

TEST_F(StoredPreferences, nameTheFirstThatJsonCannotCarry) {
    preferences.user.emplace("a", "fine");
    preferences.user.emplace("b", "\xff");
    preferences.user.emplace("c", platform::PropertyListData{{1}});

    const auto json = StoredValues({"a", "b", "c"}).serialize();

    ASSERT_FALSE(json);
    EXPECT_EQ(json.error().localizedDescription, "The value of b has no JSON form.");
}

TEST_F(StoredPreferences, tellAbsentAndEmptyTextFromEverythingElse) {
    preferences.user.emplace("empty", "");
    preferences.user.emplace("blank", " ");
    preferences.user.emplace("zero", std::int64_t{0});

    const StoredValues stored({"missing", "empty", "blank", "zero"});

    EXPECT_TRUE(stored.isAbsentOrEmptyText("missing"));
    EXPECT_TRUE(stored.isAbsentOrEmptyText("empty"));
    EXPECT_FALSE(stored.isAbsentOrEmptyText("blank"));
    EXPECT_FALSE(stored.isAbsentOrEmptyText("zero"));
}

TEST_F(StoredPreferences, areReplacedInTheReplyOnly) {
    preferences.user.emplace("language", "");
    StoredValues stored({"language", "name"});

    stored.replace("language", "en");

    EXPECT_EQ(stored.serialize().value(), R"({"language":"en","name":null})");
    EXPECT_EQ(preferences.user.at("language"), platform::PropertyListValue(""));
}

} // namespace
} // namespace lumora
