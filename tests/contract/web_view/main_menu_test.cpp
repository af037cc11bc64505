#include "platform/linux/glib_handles.h"
#include "platform/linux/gui/main_menu.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace lumora::platform::linux_backend::testing {

namespace {

/// Notes what is chosen; answers validation as told.
class Target final : public MenuTarget {
  public:
    std::vector<std::string> performed;
    std::vector<std::string> validated;
    bool valid = true;

    bool validateMenuItem(MenuItem& item) override {
        validated.push_back(item.title());
        return valid;
    }
    void performAction(const std::string& action) override { performed.push_back(action); }
};

/// The visible part of a model: an entry's title and action, depth first.
void collect(GMenuModel* model, std::vector<std::pair<std::string, std::string>>& rows) {
    for (int i = 0; i < g_menu_model_get_n_items(model); ++i) {
        g_autofree char* label = nullptr;
        g_autofree char* action = nullptr;
        g_menu_model_get_item_attribute(model, i, G_MENU_ATTRIBUTE_LABEL, "s", &label);
        g_menu_model_get_item_attribute(model, i, G_MENU_ATTRIBUTE_ACTION, "s", &action);
        if (label != nullptr)
            rows.emplace_back(label, action == nullptr ? "" : action);
        for (const char* link : {G_MENU_LINK_SECTION, G_MENU_LINK_SUBMENU}) {
            g_autoptr(GMenuModel) linked = g_menu_model_get_item_link(model, i, link);
            if (linked != nullptr)
                collect(linked, rows);
        }
    }
}

} // namespace

class MainMenu : public ::testing::Test {
  protected:
    MainMenu()
        : application(ObjectRef<GtkApplication>::adopt(
              gtk_application_new(freshIdentifier().c_str(), G_APPLICATION_NON_UNIQUE))) {
        g_application_register(G_APPLICATION(application.get()), nullptr, nullptr);
        menu = installMenuBar(application.get(), {[this] { ++quits; }, [this] { ++logFolders; }});
    }

    [[nodiscard]] std::vector<std::pair<std::string, std::string>> onScreen() const {
        std::vector<std::pair<std::string, std::string>> rows;
        collect(gtk_application_get_menubar(application.get()), rows);
        return rows;
    }

    /// The screen's action of the row with this label; "" when it has none.
    [[nodiscard]] std::string actionOnScreen(const std::string& label) const {
        for (const auto& [title, action] : onScreen())
            if (title == label)
                return action;
        return "no such row";
    }

    [[nodiscard]] std::shared_ptr<MenuItem> entry(const std::string& title) const {
        for (const auto& top : menu->items())
            for (const auto& item : top->submenu()->items())
                if (item->title() == title)
                    return item;
        return nullptr;
    }

    /// As a click on the row does; false when the row is disabled or hidden.
    bool choose(const std::string& label) {
        const std::string detailed = actionOnScreen(label);
        if (!detailed.starts_with("app."))
            return false;
        const auto name = detailed.substr(4);
        auto* group = G_ACTION_GROUP(application.get());
        if (g_action_group_has_action(group, name.c_str()) == FALSE ||
            g_action_group_get_action_enabled(group, name.c_str()) == FALSE)
            return false;
        g_action_group_activate_action(group, name.c_str(), nullptr);
        return true;
    }

    /// Two applications of one process cannot be registered under one name.
    static std::string freshIdentifier() {
        static int made = 0;
        return "com.ovra.tessel.Tests" + std::to_string(++made);
    }

    static constexpr const char* kUninstallLabel = "_Uninstall Ovra Tessel Lumora";
    static constexpr const char* kUninstall = "Uninstall Ovra Tessel Lumora";

    ObjectRef<GtkApplication> application;
    std::unique_ptr<Menu> menu;
    Target target;
    int quits = 0;
    int logFolders = 0;
};

TEST_F(MainMenu, showsTheCoreTheSameTitlesAsTheScreenInTheSameOrder) {
    std::vector<std::string> seen;
    for (const auto& top : menu->items()) {
        EXPECT_NE(top->submenu(), nullptr);
        seen.push_back(top->title());
        for (const auto& item : top->submenu()->items()) {
            EXPECT_EQ(item->submenu(), nullptr);
            seen.push_back(item->title());
        }
    }
    std::vector<std::string> shown;
    for (auto [label, action] : onScreen()) {
        std::erase(label, '_');
        shown.push_back(label);
    }
    EXPECT_EQ(seen, shown);
    EXPECT_EQ(seen.front(), "Lumora");
    EXPECT_EQ(seen[1], kUninstall);
}

TEST_F(MainMenu, theBuiltInCommandsWork) {
    EXPECT_TRUE(choose("_Quit Ovra Tessel Lumora"));
    EXPECT_EQ(quits, 1);
    EXPECT_TRUE(choose("Open _Log Folder"));
    EXPECT_EQ(logFolders, 1);
}

TEST_F(MainMenu, anEntryWithoutACommandCanBeChosenOnceItHasATarget) {
    EXPECT_FALSE(choose(kUninstallLabel));

    entry(kUninstall)->setTarget(&target);
    entry(kUninstall)->setAction("uninstallApp:");

    EXPECT_TRUE(choose(kUninstallLabel));
    EXPECT_EQ(target.performed, std::vector<std::string>{"uninstallApp:"});
    EXPECT_EQ(target.validated, std::vector<std::string>{kUninstall});
    EXPECT_EQ(entry(kUninstall)->action(), "uninstallApp:");
}

TEST_F(MainMenu, anEntryThatItsTargetRefusesIsNotPerformed) {
    entry(kUninstall)->setTarget(&target);
    target.valid = false;

    choose(kUninstallLabel);

    EXPECT_EQ(target.validated.size(), 1U);
    EXPECT_TRUE(target.performed.empty());
}

TEST_F(MainMenu, anEntryCanBeHiddenDisabledAndShownAgain) {
    const auto item = entry(kUninstall);
    item->setTarget(&target);

    item->setEnabled(false);
    EXPECT_FALSE(choose(kUninstallLabel));
    item->setEnabled(true);
    item->setHidden(true);
    EXPECT_FALSE(choose(kUninstallLabel));
    EXPECT_TRUE(target.performed.empty());
    item->setHidden(false);
    EXPECT_TRUE(choose(kUninstallLabel));
    EXPECT_EQ(target.performed.size(), 1U);
}

TEST_F(MainMenu, aTargetTakesOverABuiltInCommand) {
    const auto quit = entry("Quit Ovra Tessel Lumora");
    EXPECT_EQ(quit->action(), "app.quit");
    quit->setTarget(&target);

    EXPECT_TRUE(choose("_Quit Ovra Tessel Lumora"));

    EXPECT_EQ(quits, 0);
    EXPECT_EQ(target.performed, std::vector<std::string>{"app.quit"});
}

TEST_F(MainMenu, otherRowsStayWhereTheyAreWhenOneIsRewired) {
    auto before = onScreen();
    entry(kUninstall)->setTarget(&target);
    auto after = onScreen();
    ASSERT_EQ(before.size(), after.size());
    for (std::size_t i = 0; i < before.size(); ++i) {
        EXPECT_EQ(before[i].first, after[i].first);
        if (before[i].first != kUninstallLabel) {
            EXPECT_EQ(before[i].second, after[i].second);
        }
    }
}

} // namespace lumora::platform::linux_backend::testing
