#include "shell/main_menu.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace lumora {
namespace {

bool everything(const std::string&) { return true; }

std::vector<std::string> titlesOf(MainMenu& bar, std::size_t heading) {
    std::vector<std::string> titles;
    for (const auto& item : bar.items().at(heading)->submenu()->items())
        titles.push_back(item->title().empty() ? "-" : item->title());
    return titles;
}

struct Target final : platform::MenuTarget {
    bool validateMenuItem(platform::MenuItem& item) override {
        validated.push_back(item.title());
        return allows;
    }
    void performAction(const std::string& action) override { performed.push_back(action); }

    bool allows = true;
    std::vector<std::string> validated;
    std::vector<std::string> performed;
};

TEST(TheMainMenu, readsAsAnApplicationsDoes) {
    MainMenu bar(everything);

    std::vector<std::string> headings;
    for (const auto& heading : bar.items())
        headings.push_back(heading->title());
    EXPECT_EQ((std::vector<std::string>{"Lumora", "Edit", "View", "Window", "Help"}), headings);
    EXPECT_EQ((std::vector<std::string>{"About Ovra Tessel Lumora", "-", "Hide Ovra Tessel Lumora",
                                        "Hide Others", "Show All", "-", "Uninstall Ovra Tessel Lumora", "-",
                                        "Quit Ovra Tessel Lumora"}),
              titlesOf(bar, 0));
}

TEST(TheMainMenu, leavesOutWhatThePlatformHasNoUseFor) {
    MainMenu bar([](const std::string& action) {
        return action == "uninstallApp:" || action == "terminate:" || action == "selectAll:";
    });

    EXPECT_EQ((std::vector<std::string>{"Uninstall Ovra Tessel Lumora", "-", "Quit Ovra Tessel Lumora"}),
              titlesOf(bar, 0));
    EXPECT_EQ((std::vector<std::string>{"Select All"}), titlesOf(bar, 1));
}

TEST(TheMainMenu, hasEachKeyOnce) {
    MainMenu bar(everything);
    std::vector<std::string> keys;
    for (const auto& heading : bar.headings) {
        for (const auto& entry : heading->entries) {
            if (const std::string key = entry->row.key; !key.empty())
                keys.push_back(entry->row.withOption ? "option " + key : key);
        }
    }
    std::sort(keys.begin(), keys.end());
    EXPECT_EQ(keys.end(), std::adjacent_find(keys.begin(), keys.end()));
    EXPECT_EQ(15U, keys.size());
}

TEST(AMenuEntry, tellsEachChange) {
    MenuEntry entry({"_Menu", "_Title", "act:"});
    Target target;
    int changes = 0;
    entry.changed = [&] { ++changes; };

    EXPECT_EQ("Title", entry.title());
    EXPECT_FALSE(entry.hasTarget() || entry.isHidden() || !entry.isEnabled());
    entry.setTarget(&target);
    entry.setAction("other:");
    entry.setHidden(true);
    entry.setEnabled(false);

    EXPECT_EQ(4, changes);
    EXPECT_EQ("other:", entry.action());
    EXPECT_TRUE(entry.hasTarget() && entry.isHidden() && !entry.isEnabled());
}

TEST(AMenuEntry, performsItsActionUnlessItsTargetRefuses) {
    MenuEntry entry({"_Menu", "_Title", "act:"});
    Target target;
    entry.choose(); // nobody's
    entry.setTarget(&target);

    entry.choose();
    target.allows = false;
    entry.choose();

    EXPECT_EQ((std::vector<std::string>{"act:"}), target.performed);
    EXPECT_EQ((std::vector<std::string>{"Title", "Title"}), target.validated);
}

} // namespace
} // namespace lumora
