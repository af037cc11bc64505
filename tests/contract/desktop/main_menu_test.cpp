#include "menu_fixture.h"

#include <algorithm>

namespace lumora::contract {

class MainMenu : public MenuFixture<MenuBarOnScreen> {
  protected:
    MainMenu() : MenuFixture(makeMenuBarOnScreen()) {}

    /// As the core sees them, separators left out.
    [[nodiscard]] static std::vector<std::string> titlesIn(platform::Menu& menu) {
        std::vector<std::string> titles;
        for (const auto& item : menu.items()) {
            if (!item->title().empty())
                titles.push_back(item->title());
            if (item->submenu() == nullptr)
                continue;
            const auto below = titlesIn(*item->submenu());
            titles.insert(titles.end(), below.begin(), below.end());
        }
        return titles;
    }

    [[nodiscard]] std::vector<std::string> titlesOnScreen() const {
        std::vector<std::string> titles;
        for (const auto& row : screen->rows())
            titles.push_back(row.title);
        return titles;
    }

    /// Each validation was one of this entry, and there was one.
    void expectValidated(const std::string& title) const {
        EXPECT_FALSE(target.validated.empty());
        for (const std::string& validated : target.validated)
            EXPECT_EQ(validated, title);
    }
};

TEST_F(MainMenu, showsTheCoreTheSameTitlesAsTheScreenInTheSameOrder) {
    for (const auto& top : screen->menu().items())
        EXPECT_NE(top->submenu(), nullptr) << top->title();
    const auto seen = titlesIn(screen->menu());
    EXPECT_EQ(seen, titlesOnScreen());
    EXPECT_NE(std::find(seen.begin(), seen.end(), kUninstall), seen.end());
    EXPECT_NE(std::find(seen.begin(), seen.end(), kQuit), seen.end());
}

TEST_F(MainMenu, anEntryWithoutACommandCanBeChosenOnceItHasATarget) {
    EXPECT_FALSE(screen->choose(kUninstall));

    entry(kUninstall)->setTarget(&target);
    entry(kUninstall)->setAction("uninstallApp:");

    EXPECT_TRUE(screen->choose(kUninstall));
    EXPECT_EQ(target.performed, std::vector<std::string>{"uninstallApp:"});
    EXPECT_EQ(entry(kUninstall)->action(), "uninstallApp:");
    expectValidated(kUninstall);
}

TEST_F(MainMenu, anEntryThatItsTargetRefusesIsNotPerformed) {
    entry(kUninstall)->setTarget(&target);
    entry(kUninstall)->setAction("uninstallApp:");
    target.valid = false;

    static_cast<void>(screen->choose(kUninstall)); // it may be offered still

    expectValidated(kUninstall);
    EXPECT_TRUE(target.performed.empty());
}

TEST_F(MainMenu, anEntryCanBeHiddenDisabledAndShownAgain) {
    const auto item = entry(kUninstall);
    item->setTarget(&target);
    item->setAction("uninstallApp:");

    item->setEnabled(false);
    target.valid = false; // where entries are validated before they are shown, this is what counts
    EXPECT_FALSE(screen->choose(kUninstall));
    item->setEnabled(true);
    target.valid = true;
    item->setHidden(true);
    EXPECT_FALSE(screen->choose(kUninstall));
    EXPECT_TRUE(target.performed.empty());
    item->setHidden(false);
    EXPECT_TRUE(screen->choose(kUninstall));
    EXPECT_EQ(target.performed.size(), 1U);
}

TEST_F(MainMenu, otherRowsStayAsTheyAreWhenOneIsRewired) {
    const auto before = screen->rows();
    entry(kUninstall)->setTarget(&target);
    entry(kUninstall)->setAction("uninstallApp:");
    const auto after = screen->rows();
    ASSERT_EQ(before.size(), after.size());
    for (std::size_t i = 0; i < before.size(); ++i) {
        EXPECT_EQ(before[i].title, after[i].title);
        if (before[i].title != kUninstall) {
            EXPECT_EQ(before[i].action, after[i].action);
        }
    }
}

} // namespace lumora::contract
