#include "fakes/core_test.h"
#include "shell/app_delegate.h"

#include <memory>
#include <stdexcept>

namespace lumora {
namespace {

class UninstallMenuItem : public CoreTest {
  protected:
    UninstallMenuItem() { application.menu = std::make_unique<fakes::FakeMenu>(); }

    fakes::FakeMenu& bar() { return *application.menu; }

    void expectWired(const fakes::FakeMenuItem& item) {
        EXPECT_EQ(item.target, &delegate);
        EXPECT_EQ(item.actionName, "uninstallApp:");
        EXPECT_FALSE(item.hidden);
        EXPECT_TRUE(item.enabled);
        EXPECT_EQ(delegate.uninstallMenuItem().get(), &item);
    }

    static void expectUntouched(const fakes::FakeMenuItem& item) {
        EXPECT_EQ(item.target, nullptr);
        EXPECT_TRUE(item.hidden);
        EXPECT_FALSE(item.enabled);
    }

    AppDelegate delegate;
};

TEST_F(UninstallMenuItem, isNobodyWithoutAMenu) {
    application.menu = nullptr;

    delegate.configureUninstallMenuItem();

    EXPECT_EQ(delegate.uninstallMenuItem(), nullptr);
}

TEST_F(UninstallMenuItem, isNobodyWhereNoEntryFits) {
    auto& quit = bar().add("Quit Ovra Tessel Lumora", "terminate:");
    auto& other = bar().add("uninstall ovra tessel lumora", "uninstallapp:");

    delegate.configureUninstallMenuItem();

    EXPECT_EQ(delegate.uninstallMenuItem(), nullptr);
    expectUntouched(quit);
    expectUntouched(other);
    EXPECT_EQ(quit.actionName, "terminate:");
}

TEST_F(UninstallMenuItem, isFoundByItsActionWhateverItsTitle) {
    auto& item = bar().add("Remove", "uninstallApp:");

    delegate.configureUninstallMenuItem();

    expectWired(item);
}

TEST_F(UninstallMenuItem, isFoundByAPartOfItsTitleAndRewired) {
    auto& item = bar().add("Uninstall Ovra Tessel Lumora...", "terminate:");

    delegate.configureUninstallMenuItem();

    expectWired(item);
}

TEST_F(UninstallMenuItem, isFoundInNestedMenus) {
    auto& menu = bar().add("Lumora").openMenu();
    menu.add("About");
    auto& item = menu.add("More").openMenu().add("Uninstall Ovra Tessel Lumora");

    delegate.configureUninstallMenuItem();

    expectWired(item);
}

TEST_F(UninstallMenuItem, isTheFirstOfSeveralEachEntryBeforeItsOwnMenu) {
    auto& outer = bar().add("Uninstall Ovra Tessel Lumora");
    auto& inner = outer.openMenu().add("Uninstall Ovra Tessel Lumora");
    auto& later = bar().add("Later", "uninstallApp:");

    delegate.configureUninstallMenuItem();

    expectWired(outer);
    expectUntouched(inner);
    expectUntouched(later);
}

TEST_F(UninstallMenuItem, ofAnEarlierEntrysMenuComesBeforeALaterEntry) {
    auto& nested = bar().add("First").openMenu().add("Uninstall Ovra Tessel Lumora");
    auto& later = bar().add("Uninstall Ovra Tessel Lumora");

    delegate.configureUninstallMenuItem();

    expectWired(nested);
    expectUntouched(later);
}

TEST_F(UninstallMenuItem, mayBeWiredTwice) {
    auto& item = bar().add("Uninstall Ovra Tessel Lumora");

    delegate.configureUninstallMenuItem();
    delegate.configureUninstallMenuItem();

    expectWired(item);
}

TEST_F(UninstallMenuItem, isNotKeptAliveByTheDelegate) {
    bar().add("Uninstall Ovra Tessel Lumora");
    delegate.configureUninstallMenuItem();

    application.menu = nullptr;

    EXPECT_EQ(delegate.uninstallMenuItem(), nullptr);
}

TEST_F(UninstallMenuItem, isWiredBeforeTheLaunchHasFinished) {
    auto& item = bar().add("Uninstall Ovra Tessel Lumora");

    delegate.applicationWillFinishLaunching();

    expectWired(item);
}

TEST_F(UninstallMenuItem, isWiredAgainWhenTheLaunchHasFinished) {
    delegate.applicationWillFinishLaunching();
    auto& item = bar().add("Uninstall Ovra Tessel Lumora");

    delegate.applicationDidFinishLaunching();

    expectWired(item);
}

TEST_F(UninstallMenuItem, isShownAndEnabledByValidation) {
    auto& item = bar().add("Whatever", "uninstallApp:");

    EXPECT_TRUE(delegate.validateMenuItem(item));

    EXPECT_FALSE(item.hidden);
    EXPECT_TRUE(item.enabled);
}

TEST_F(UninstallMenuItem, validationLeavesEveryOtherEntryAsItIs) {
    auto& item = bar().add("Uninstall Ovra Tessel Lumora", "terminate:");

    EXPECT_TRUE(delegate.validateMenuItem(item));

    expectUntouched(item);
    EXPECT_EQ(item.actionName, "terminate:");
}

TEST_F(UninstallMenuItem, runsTheCommandAndNoOther) {
    delegate.performAction("terminate:");
    EXPECT_TRUE(alerts.shown.empty());

    delegate.performAction("uninstallApp:");
    EXPECT_EQ(alerts.shown.size(), 1U);
}

TEST_F(UninstallMenuItem, runsTheCommandAgainAfterOneThatRaised) {
    alerts.onShow = [](const platform::Alert&) { throw std::runtime_error("no alerts today"); };
    EXPECT_THROW(delegate.performAction("uninstallApp:"), std::runtime_error);

    alerts.onShow = [](const platform::Alert&) {};
    delegate.performAction("uninstallApp:");

    EXPECT_EQ(alerts.shown.size(), 2U);
}

} // namespace
} // namespace lumora
