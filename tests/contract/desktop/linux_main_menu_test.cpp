#include "gtk_menu_bar_on_screen.h"
#include "menu_fixture.h"

namespace lumora::contract {

/// What entries do here beyond the suite that runs on every system.
class MainMenuOnGtk : public MenuFixture<GtkMenuBarOnScreen> {
  protected:
    MainMenuOnGtk() : MenuFixture(std::make_unique<GtkMenuBarOnScreen>()) {}
};

TEST_F(MainMenuOnGtk, beginsWithTheApplicationsOwnMenu) {
    const auto rows = screen->rows();
    EXPECT_EQ(rows[0].title, "Lumora");
    EXPECT_EQ(rows[1].title, kUninstall);
}

TEST_F(MainMenuOnGtk, itsMenusHaveNoMenusInside) {
    for (const auto& top : screen->menu().items())
        for (const auto& item : top->submenu()->items())
            EXPECT_EQ(item->submenu(), nullptr) << item->title();
}

TEST_F(MainMenuOnGtk, theBuiltInCommandsWork) {
    EXPECT_TRUE(screen->choose(kQuit));
    EXPECT_EQ(screen->quits, 1);
    EXPECT_TRUE(screen->choose("Open Log Folder"));
    EXPECT_EQ(screen->logFolders, 1);
}

TEST_F(MainMenuOnGtk, anEntryIsValidatedOnceWhenItIsChosen) {
    entry(kUninstall)->setTarget(&target);

    EXPECT_TRUE(screen->choose(kUninstall));

    EXPECT_EQ(target.validated.size(), 1U);
}

TEST_F(MainMenuOnGtk, disablingAnEntrySuffices) {
    entry(kUninstall)->setTarget(&target);
    entry(kUninstall)->setEnabled(false);

    EXPECT_FALSE(screen->choose(kUninstall));

    EXPECT_TRUE(target.validated.empty());
}

TEST_F(MainMenuOnGtk, aTargetTakesOverABuiltInCommand) {
    const auto quit = entry(kQuit);
    EXPECT_EQ(quit->action(), "terminate:");
    quit->setTarget(&target);

    EXPECT_TRUE(screen->choose(kQuit));

    EXPECT_EQ(screen->quits, 0);
    EXPECT_EQ(target.performed, std::vector<std::string>{"terminate:"});
}

} // namespace lumora::contract
