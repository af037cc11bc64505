#include "webhost/web_host_test.h"
#include "webhost/window_title.h"

#include <csignal>

namespace lumora {
namespace {

class StoredWindowTitle : public WebHostTest {
  protected:
    fakes::FakeWindow window;
};

TEST_F(StoredWindowTitle, answersWithAnEntryWhateverIsStored) {
    EXPECT_EQ(storedTitleValues(), (PreferenceValues{{"WindowTitle", std::nullopt}}));

    preferences.user.emplace("WindowTitle", "Stored");
    EXPECT_EQ(storedTitleValues(), (PreferenceValues{{"WindowTitle", "Stored"}}));
}

TEST_F(StoredWindowTitle, becomesTheWindowsTitleAndIsNotWrittenBack) {
    showStoredTitle({{"WindowTitle", "Stored"}}, &window);

    EXPECT_EQ(window.current, "Stored");
    EXPECT_TRUE(preferences.journal.empty());
}

TEST_F(StoredWindowTitle, changesNothingWithoutAWindow) {
    showStoredTitle({{"WindowTitle", "Stored"}}, nullptr);
    showStoredTitle({{"WindowTitle", std::nullopt}}, nullptr);
    showStoredTitle({{"WindowTitle", std::int64_t{1}}}, nullptr);

    EXPECT_TRUE(preferences.journal.empty());
}

TEST_F(StoredWindowTitle, withoutAnEntryIsTheProductsAndIsStored) {
    showStoredTitle({}, &window);

    EXPECT_EQ(window.current, "Ovra Tessel - Lumora");
    EXPECT_EQ(preferences.user.at("WindowTitle"), platform::PropertyListValue("Ovra Tessel - Lumora"));
    EXPECT_EQ(preferences.journal, (Lines{"set WindowTitle", "synchronize"}));
}

TEST_F(StoredWindowTitle, withoutAnEntryAndWithoutAWindowIsCleared) {
    preferences.user.emplace("WindowTitle", "Stored");

    showStoredTitle({}, nullptr);

    EXPECT_EQ(preferences.user.at("WindowTitle"), platform::PropertyListValue(""));
    EXPECT_EQ(preferences.journal, (Lines{"set WindowTitle", "synchronize"}));
}

using StoredWindowTitleDeathTest = StoredWindowTitle;

TEST_F(StoredWindowTitleDeathTest, thatIsAbsentStopsTheProcessOfAWindow) {
    EXPECT_EXIT(showStoredTitle({{"WindowTitle", std::nullopt}}, &window), ::testing::KilledBySignal(SIGABRT),
                "");
}

TEST_F(StoredWindowTitleDeathTest, thatIsNoStringStopsTheProcessOfAWindow) {
    EXPECT_EXIT(showStoredTitle({{"WindowTitle", std::int64_t{1}}}, &window),
                ::testing::KilledBySignal(SIGABRT), "");
}

} // namespace
} // namespace lumora
