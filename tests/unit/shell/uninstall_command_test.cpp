#include "fakes/core_test.h"
#include "shell/app_delegate.h"

#include <algorithm>
#include <string>
#include <vector>

namespace lumora {
namespace {

using platform::AlertStyle;
using platform::AppleScriptError;

constexpr const char* kSystemWide = "/Applications/Ovra Tessel Lumora.app";
constexpr const char* kPerUser = "/Users/casey/Applications/Ovra Tessel Lumora.app";
constexpr const char* kResource =
    "/Applications/Ovra Tessel Lumora.app/Contents/Resources/uninstall_lumora.sh";
constexpr const char* kCopy = "/tmp/ovra_uninstall_4242.sh";

class UninstallCommand : public CoreTest {
  protected:
    using Texts = std::vector<std::string>;

    UninstallCommand() {
        bundles.resources["uninstall_lumora.sh"] = kResource;
        files.putFile(kResource, "echo gone\n");
    }

    void installForUser() { files.putFolder(kPerUser); }
    void installForAll() { files.putFolder(kSystemWide); }

    [[nodiscard]] Texts messages() const {
        Texts texts;
        std::ranges::transform(alerts.shown, std::back_inserter(texts), &platform::Alert::messageText);
        return texts;
    }

    /// What the failure's alert says after the script ended with this error.
    std::string detailsAfter(const AppleScriptError& error) {
        appleScripts.error = error;
        delegate.uninstallApp();
        EXPECT_EQ(messages().back(), "Uninstall Failed");
        return alerts.shown.back().informativeText;
    }

    static std::string withManualCommand(const std::string& details) {
        return details + "\n\nYou can run this manually for diagnostics:\n"
                         "/bin/bash /tmp/ovra_uninstall_4242.sh --skip-kill";
    }

    AppDelegate delegate;
};

TEST_F(UninstallCommand, withoutAnInstallationSaysWhereItLooked) {
    files = {};

    delegate.uninstallApp();

    ASSERT_EQ(messages(), Texts{"No Installation Found"});
    EXPECT_EQ(alerts.shown[0].informativeText, "Ovra Tessel Lumora is not installed on this Mac.\n\n"
                                               "Checked locations:\n• /Applications/\n• ~/Applications/");
    EXPECT_EQ(alerts.shown[0].style, AlertStyle::informational);
    EXPECT_EQ(alerts.shown[0].buttons, Texts{"OK"});
    EXPECT_TRUE(files.journal.empty());
    EXPECT_TRUE(appleScripts.sources.empty());
}

TEST_F(UninstallCommand, asksBeforeItDoesAnything) {
    installForUser();
    alerts.onShow = [this](const platform::Alert&) {
        if (alerts.shown.size() == 1) {
            EXPECT_TRUE(files.journal.empty());
            EXPECT_TRUE(appleScripts.sources.empty());
        }
    };

    delegate.uninstallApp();

    ASSERT_FALSE(alerts.shown.empty());
    EXPECT_EQ(alerts.shown[0].messageText, "Uninstall Ovra Tessel Lumora");
    EXPECT_EQ(
        alerts.shown[0].informativeText,
        "This will completely remove Ovra Tessel Lumora from this Mac, including all preferences and support "
        "files.\n\nInstall location: /Users/casey/Applications/Ovra Tessel Lumora.app\n"
        "Install level: current user only\n\nThis action cannot be undone.");
    EXPECT_EQ(alerts.shown[0].style, AlertStyle::critical);
    EXPECT_EQ(alerts.shown[0].buttons, (Texts{"Uninstall", "Cancel"}));
}

TEST_F(UninstallCommand, namesTheSystemWideInstallationWhenThereAreBoth) {
    installForUser();
    installForAll();

    delegate.uninstallApp();

    EXPECT_EQ(
        alerts.shown[0].informativeText,
        "This will completely remove Ovra Tessel Lumora from this Mac, including all preferences and support "
        "files.\n\nInstall location: /Applications/Ovra Tessel Lumora.app\n"
        "Install level: system-wide (all users)\n\nThis action cannot be undone.");
    EXPECT_EQ(appleScripts.sources, Texts{R"(do shell script "/bin/bash " & quoted form of )"
                                          R"("/tmp/ovra_uninstall_4242.sh" & " --skip-kill 2>&1")"
                                          R"( with administrator privileges)"});
}

TEST_F(UninstallCommand, asksForNoPrivilegesForAUsersOwnInstallation) {
    installForUser();

    delegate.uninstallApp();

    EXPECT_EQ(appleScripts.sources, Texts{R"(do shell script "/bin/bash " & quoted form of )"
                                          R"("/tmp/ovra_uninstall_4242.sh" & " --skip-kill 2>&1")"});
}

TEST_F(UninstallCommand, endsSilentlyOnAnyOtherAnswer) {
    installForUser();
    for (const int answer : {1001, 1002, 0, -1000}) {
        alerts.answer = answer;
        alerts.shown.clear();

        delegate.uninstallApp();

        EXPECT_EQ(alerts.shown.size(), 1U);
        EXPECT_TRUE(files.journal.empty());
        EXPECT_TRUE(appleScripts.sources.empty());
        EXPECT_EQ(application.terminations, 0);
    }
}

TEST_F(UninstallCommand, saysThatItsScriptIsMissing) {
    installForUser();
    bundles.resources.clear();

    delegate.uninstallApp();

    ASSERT_EQ(messages(), (Texts{"Uninstall Ovra Tessel Lumora", "Uninstall Error"}));
    EXPECT_EQ(
        alerts.shown[1].informativeText,
        "The uninstall script was not found inside the application bundle. The app may be corrupted.\n\n"
        "Please reinstall or manually delete the app.");
    EXPECT_EQ(alerts.shown[1].style, AlertStyle::warning);
    EXPECT_TRUE(alerts.shown[1].buttons.empty());
    EXPECT_TRUE(files.journal.empty());
}

TEST_F(UninstallCommand, runsACopyOfTheScriptAndLeavesItThere) {
    installForUser();
    std::string copyAtRun;
    appleScripts.onExecute = [&] { copyAtRun = files.file(kCopy)->contents; };

    delegate.uninstallApp();

    EXPECT_EQ(copyAtRun, "echo gone\n");
    EXPECT_EQ(files.journal, Texts{std::string("copy ") + kResource + " -> " + kCopy});
}

TEST_F(UninstallCommand, replacesAnEarlierCopy) {
    installForUser();
    files.putFile(kCopy, "old");

    delegate.uninstallApp();

    EXPECT_EQ(files.journal,
              (Texts{std::string("remove ") + kCopy, std::string("copy ") + kResource + " -> " + kCopy}));
    EXPECT_EQ(files.file(kCopy)->contents, "echo gone\n");
}

TEST_F(UninstallCommand, saysWhyAnEarlierCopyCannotBeRemoved) {
    installForUser();
    files.putFile(kCopy, "old");
    files.failRemove(kCopy);

    delegate.uninstallApp();

    ASSERT_EQ(messages(), (Texts{"Uninstall Ovra Tessel Lumora", "Uninstall Error"}));
    EXPECT_EQ(alerts.shown[1].informativeText,
              "Failed to prepare the uninstall script.\n\nDetails: The item could not be removed.");
    EXPECT_EQ(alerts.shown[1].style, AlertStyle::warning);
    EXPECT_TRUE(alerts.shown[1].buttons.empty());
    EXPECT_TRUE(appleScripts.sources.empty());
    EXPECT_EQ(files.file(kCopy)->contents, "old");
}

TEST_F(UninstallCommand, saysWhyTheScriptCannotBeCopied) {
    installForUser();
    files.failCreateFile(kCopy);

    delegate.uninstallApp();

    ASSERT_EQ(messages(), (Texts{"Uninstall Ovra Tessel Lumora", "Uninstall Error"}));
    EXPECT_EQ(alerts.shown[1].informativeText,
              "Failed to prepare the uninstall script.\n\nDetails: The item could not be copied.");
    EXPECT_TRUE(appleScripts.sources.empty());
}

TEST_F(UninstallCommand, endsSilentlyWhenNoAppleScriptCanBeMade) {
    installForUser();
    appleScripts.refuses = true;

    delegate.uninstallApp();

    EXPECT_EQ(messages(), Texts{"Uninstall Ovra Tessel Lumora"});
    EXPECT_EQ(application.terminations, 0);
}

TEST_F(UninstallCommand, tellsTheSuccessAndThenEndsTheApplication) {
    installForUser();
    alerts.onShow = [this](const platform::Alert&) { EXPECT_EQ(application.terminations, 0); };

    delegate.uninstallApp();

    ASSERT_EQ(messages(), (Texts{"Uninstall Ovra Tessel Lumora", "Uninstall Complete"}));
    EXPECT_EQ(alerts.shown[1].informativeText,
              "Ovra Tessel Lumora has been successfully removed from this Mac.");
    EXPECT_EQ(alerts.shown[1].style, AlertStyle::informational);
    EXPECT_EQ(alerts.shown[1].buttons, Texts{"OK"});
    EXPECT_EQ(application.terminations, 1);
}

TEST_F(UninstallCommand, endsTheApplicationWithoutTheTerminationNotification) {
    delegate.applicationWillFinishLaunching();
    installForUser();
    forgetLines();

    delegate.uninstallApp();

    EXPECT_EQ(application.terminations, 1);
    EXPECT_TRUE(streams.logged().empty()); // the staged-update step would log its banner
}

TEST_F(UninstallCommand, endsSilentlyWhenTheAdministratorPromptIsDismissed) {
    installForAll();
    appleScripts.error = AppleScriptError{-128, "User canceled."};

    delegate.uninstallApp();

    EXPECT_EQ(messages(), Texts{"Uninstall Ovra Tessel Lumora"});
    EXPECT_EQ(application.terminations, 0);
}

TEST_F(UninstallCommand, tellsAFailureWithItsTextAndTheManualCommand) {
    installForUser();

    EXPECT_EQ(detailsAfter({1, "rm: cannot remove"}), withManualCommand("rm: cannot remove"));

    EXPECT_EQ(alerts.shown.back().style, AlertStyle::warning);
    EXPECT_TRUE(alerts.shown.back().buttons.empty());
    EXPECT_EQ(application.terminations, 0);
    EXPECT_NE(files.file(kCopy), nullptr);
}

TEST_F(UninstallCommand, tellsAnUnknownErrorWhenThereIsNoText) {
    installForUser();
    const auto expected = withManualCommand("An unknown error occurred while starting uninstallation.");

    EXPECT_EQ(detailsAfter({1, std::nullopt}), expected);
    EXPECT_EQ(detailsAfter({2, ""}), expected);
}

TEST_F(UninstallCommand, tellsThatNothingIsInstalledInFixedWords) {
    installForUser();
    const auto expected = withManualCommand("Ovra Tessel Lumora is not installed on this Mac.");

    EXPECT_EQ(detailsAfter({1, "No installation found"}), expected);
    EXPECT_EQ(detailsAfter({1, "=====\nhead\n  No installation found.\nmore\n"}), expected);
    EXPECT_NE(detailsAfter({1, "No Installation Found"}), expected);
}

TEST_F(UninstallCommand, leavesDecorationOutOfTheText) {
    installForUser();

    constexpr const char* kOutput =
        "==========\n  Uninstalling \n====== step =====\n\n \t \nremoved: a\n===\n"
        "step ===== two\nfailed\n";
    EXPECT_EQ(detailsAfter({1, kOutput}), withManualCommand("  Uninstalling \nremoved: a\n===\nfailed"));
    EXPECT_EQ(detailsAfter({1, "one\rtwo\r\nthree"}), withManualCommand("one\ntwo\nthree"));
}

TEST_F(UninstallCommand, hasAnEmptyTextWhenAllWasDecoration) {
    installForUser();

    EXPECT_EQ(detailsAfter({1, "=====\n\n   \n=========\n"}), withManualCommand(""));
}

TEST_F(UninstallCommand, isNotBegunAgainByItsMenuEntryWhileItRuns) {
    installForUser();
    int tries = 0;
    const auto chooseAgain = [&] {
        if (++tries <= 3)
            delegate.performAction("uninstallApp:");
    };
    alerts.onShow = [&](const platform::Alert&) { chooseAgain(); };
    appleScripts.onExecute = chooseAgain;

    delegate.performAction("uninstallApp:");

    EXPECT_EQ(messages(), (Texts{"Uninstall Ovra Tessel Lumora", "Uninstall Complete"}));
    EXPECT_EQ(tries, 3);
    delegate.performAction("uninstallApp:"); // afterwards it can be
    EXPECT_EQ(alerts.shown.size(), 4U);
}

TEST_F(UninstallCommand, usesTheSamePlaceForEachRunOfAProcess) {
    installForUser();
    alerts.answer = platform::kAlertFirstButtonReturn;
    appleScripts.error = AppleScriptError{1, "no"};

    delegate.uninstallApp();
    delegate.uninstallApp();

    ASSERT_EQ(appleScripts.sources.size(), 2U);
    EXPECT_EQ(appleScripts.sources[0], appleScripts.sources[1]);
    EXPECT_EQ(files.journal.size(), 3U); // copy, then remove and copy
}

} // namespace
} // namespace lumora
