#include "bridge/bridge_test.h"

namespace lumora {
namespace {

class WindowTitleMessage : public BridgeTest {};

TEST_F(WindowTitleMessage, withTextIsStoredAndThenShown) {
    Lines journalWhenShown;
    page.onCall = [&] { journalWhenShown = preferences.journal; };

    post("sendLumoraTitleToNative", "Acme Support");

    EXPECT_EQ(preferences.user.at("WindowTitle"), platform::PropertyListValue("Acme Support"));
    EXPECT_EQ(journalWhenShown, (Lines{"set WindowTitle", "synchronize"}));
    EXPECT_EQ(page.journal, Lines{"title Acme Support"});
}

TEST_F(WindowTitleMessage, mayBeEmpty) {
    preferences.user.emplace("WindowTitle", "Stored");

    post("sendLumoraTitleToNative", "");

    EXPECT_EQ(preferences.user.at("WindowTitle"), platform::PropertyListValue(""));
    EXPECT_EQ(page.journal, Lines{"title "});
}

TEST_F(WindowTitleMessage, withoutTextShowsTheStoredTitle) {
    preferences.user.emplace("WindowTitle", "Stored");

    post("sendLumoraTitleToNative");

    EXPECT_EQ(page.journal, Lines{"title Stored"});
    EXPECT_TRUE(preferences.journal.empty());
}

TEST_F(WindowTitleMessage, withoutTextAndWithoutAStoredTitleShowsTheProducts) {
    post("sendLumoraTitleToNative");

    EXPECT_EQ(page.journal, Lines{"title Ovra Tessel - Lumora"});
    EXPECT_TRUE(preferences.journal.empty());
}

TEST_F(WindowTitleMessage, doesNotShowAStoredValueThatIsNoString) {
    preferences.user.emplace("WindowTitle", std::int64_t{5});

    post("sendLumoraTitleToNative");

    EXPECT_EQ(page.journal, Lines{"title Ovra Tessel - Lumora"});
}

TEST_F(WindowTitleMessage, isStoredWithoutADelegateToo) {
    handler.setNativeMessageHandlerDelegate(nullptr);

    post("sendLumoraTitleToNative", "Acme Support");
    post("sendLumoraTitleToNative");

    EXPECT_EQ(preferences.journal, (Lines{"set WindowTitle", "synchronize"}));
    EXPECT_TRUE(page.journal.empty());
}

} // namespace
} // namespace lumora
