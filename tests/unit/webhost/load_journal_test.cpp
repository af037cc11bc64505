#include "webhost/load_journal.h"

#include <gtest/gtest.h>

#include <array>

namespace lumora {
namespace {

/// Failures as the engine words them.
namespace Failure {
const platform::Error other{"NSURLErrorDomain", -1004, "refused", {}};
const platform::Error interruptedByPolicy{"WebKitErrorDomain", 102, "interrupted", {}};
} // namespace Failure

class LoadJournals : public ::testing::Test {
  protected:
    // What an engine names navigations by; only their identity counts.
    std::array<char, 4> names{};
    LoadJournal::Navigation first = &names[0], second = &names[1], third = &names[2];
    LoadJournal journal;

    void hostLoadsAndBegins(LoadJournal::Navigation navigation, const std::string& address) {
        journal.hostLoads(navigation, address, address);
        journal.policyDecided(address, true);
        journal.started(navigation);
    }
    void stands(LoadJournal::Navigation navigation, const std::string& address) {
        hostLoadsAndBegins(navigation, address);
        journal.committed(navigation, address);
    }
};

TEST_F(LoadJournals, aFailedLoadOfTheHostIsThePages) {
    hostLoadsAndBegins(first, "https://one/");
    EXPECT_TRUE(journal.failed(first, Failure::other));
}

TEST_F(LoadJournals, aFailureAfterTheFirstBytesIsThePages) {
    stands(first, "https://one/");
    EXPECT_TRUE(journal.failed(first, Failure::other));
}

TEST_F(LoadJournals, aLoadThatThePageBeganMayFailToo) {
    stands(first, "https://one/");
    journal.policyDecided("https://link/", true);
    journal.started(second);
    EXPECT_TRUE(journal.failed(second, Failure::other));
}

TEST_F(LoadJournals, aLoadThatAnotherOfTheHostReplacesIsNoFailure) {
    hostLoadsAndBegins(first, "https://one/");
    hostLoadsAndBegins(second, "file:///page");
    EXPECT_FALSE(journal.failed(first, Failure::other));
    EXPECT_TRUE(journal.failed(second, Failure::other));
}

TEST_F(LoadJournals, aLoadThatTheHostReplacedBeforeItBeganIsNoFailureWhenItBeginsLate) {
    journal.hostLoads(first, "https://one/", "https://one/");
    journal.hostLoads(second, "file:///page", "file:///page");
    journal.started(first);
    EXPECT_FALSE(journal.failed(first, Failure::other));
}

TEST_F(LoadJournals, thePagesOwnLoadThatTheHostReplacesIsNoFailure) {
    stands(first, "https://one/");
    journal.started(second);
    hostLoadsAndBegins(third, "https://three/");
    EXPECT_FALSE(journal.failed(second, Failure::other));
}

TEST_F(LoadJournals, aPageThatStillLoadsWhenTheHostReplacesItHasNotFailed) {
    stands(first, "https://one/");
    hostLoadsAndBegins(second, "https://two/");
    EXPECT_FALSE(journal.failed(first, Failure::other));
}

TEST_F(LoadJournals, aLoadThatThePolicyRefusesReplacesNothing) {
    stands(first, "https://one/");
    journal.hostLoads(second, "https://foreign/", "https://foreign/");
    journal.policyDecided("https://foreign/", false);
    EXPECT_EQ(journal.awaited(), "");
    EXPECT_TRUE(journal.failed(first, Failure::other));
}

TEST_F(LoadJournals, whatThePolicyCancelledHasNotFailed) {
    hostLoadsAndBegins(first, "https://one/");
    journal.policyDecided("https://redirected/", false);
    EXPECT_FALSE(journal.failed(first, Failure::interruptedByPolicy));
}

TEST_F(LoadJournals, whatAnyoneElseInterruptedHasFailed) {
    hostLoadsAndBegins(first, "https://download/");
    EXPECT_TRUE(journal.failed(first, Failure::interruptedByPolicy));
}

TEST_F(LoadJournals, aCancelOfThePolicyExcusesNothingThatBeginsLater) {
    stands(first, "https://one/");
    journal.policyDecided("https://foreign/", false);
    journal.started(second);
    EXPECT_TRUE(journal.failed(second, Failure::interruptedByPolicy));
}

TEST_F(LoadJournals, aPolicysCancelExcusesNoOtherKindOfFailure) {
    hostLoadsAndBegins(first, "https://one/");
    journal.policyDecided("https://frame-of-it/", false);
    EXPECT_TRUE(journal.failed(first, Failure::other));
}

TEST_F(LoadJournals, whatTheHostGivesUpHasNotFailed) {
    stands(first, "file:///page");
    hostLoadsAndBegins(second, "https://one/");
    journal.hostWithdraws();
    EXPECT_EQ(journal.awaited(), "");
    EXPECT_EQ(journal.standing(), "file:///page");
    EXPECT_FALSE(journal.failed(second, Failure::other));
}

TEST_F(LoadJournals, whatTheHostGivesUpBeforeItBeganHasNotFailedEither) {
    stands(first, "file:///page");
    journal.hostLoads(second, "https://one/", "https://one/");
    journal.hostWithdraws();
    journal.started(second);
    EXPECT_FALSE(journal.failed(second, Failure::other));
}

TEST_F(LoadJournals, thePagesOwnLoadThatTheHostGivesUpHasNotFailed) {
    stands(first, "file:///page");
    journal.started(second);
    journal.hostWithdraws();
    EXPECT_FALSE(journal.failed(second, Failure::other));
}

TEST_F(LoadJournals, tellWhatIsAwaitedAndWhatStands) {
    hostLoadsAndBegins(first, "https://one/");
    EXPECT_EQ(journal.awaited(), "https://one/");
    EXPECT_EQ(journal.standing(), "");
    journal.committed(first, "https://one/after-redirect");
    EXPECT_EQ(journal.awaited(), "");
    EXPECT_EQ(journal.standing(), "https://one/after-redirect");
    hostLoadsAndBegins(second, "https://two/");
    EXPECT_TRUE(journal.failed(second, Failure::other));
    EXPECT_EQ(journal.awaited(), "");
    EXPECT_EQ(journal.standing(), "https://one/after-redirect");
}

TEST_F(LoadJournals, aNameThatComesAgainIsANewNavigation) {
    hostLoadsAndBegins(first, "https://one/");
    stands(second, "file:///page"); // the first never reports its end
    hostLoadsAndBegins(first, "https://one/");
    EXPECT_TRUE(journal.failed(first, Failure::other));
}

TEST_F(LoadJournals, aNameThatComesAgainToThePageIsNewOnceAnotherPageStood) {
    hostLoadsAndBegins(first, "https://one/");
    stands(second, "file:///page"); // the first never reports its end
    journal.started(first);
    EXPECT_TRUE(journal.failed(first, Failure::other));
}

TEST_F(LoadJournals, aNameThatComesAgainToTheHostIsNewAtOnce) {
    hostLoadsAndBegins(first, "https://one/");
    hostLoadsAndBegins(second, "https://two/"); // the first never reports its end
    hostLoadsAndBegins(first, "https://three/");
    EXPECT_TRUE(journal.failed(first, Failure::other));
}

TEST_F(LoadJournals, theNameOfAFailedLoadComesAgainUnburdened) {
    hostLoadsAndBegins(first, "https://one/");
    EXPECT_TRUE(journal.failed(first, Failure::other));
    journal.hostWithdraws();
    journal.started(first); // of the page this time
    EXPECT_TRUE(journal.failed(first, Failure::other));
}

TEST_F(LoadJournals, theNewestIsTheAwaitedPageOrTheOneThatStands) {
    EXPECT_EQ(journal.newest(), "");
    stands(first, "file:///page");
    hostLoadsAndBegins(second, "https://one/");
    EXPECT_EQ(journal.newest(), "https://one/");
    EXPECT_TRUE(journal.failed(second, Failure::other));
    EXPECT_EQ(journal.newest(), "file:///page");
}

TEST_F(LoadJournals, aPlaceInThePageThatStandsIsAwaitedUntilAnotherLoadBegins) {
    stands(first, "https://one/");
    journal.hostLoads(second, "https://one/#place", "https://one/#place");
    journal.policyDecided("https://one/#place", true); // the engine neither begins nor commits it
    journal.policyDecided("https://link/", true);
    journal.started(third);
    journal.committed(third, "https://link/");
    EXPECT_EQ(journal.newest(), "https://link/");
    EXPECT_EQ(journal.processEnded(), "https://link/");
}

TEST_F(LoadJournals, theHostsLoadIsAwaitedWhileThePolicyIsStillToDecideIt) {
    stands(first, "https://one/");
    journal.hostLoads(second, "https://two/", "https://two/");
    journal.started(third); // of the page's own, a moment before
    EXPECT_EQ(journal.awaited(), "https://two/");
    journal.policyDecided("https://two/", true);
    journal.started(second);
    EXPECT_EQ(journal.awaited(), "https://two/");
}

TEST_F(LoadJournals, aDeadProcessLosesTheAwaitedPageOrTheOneThatStood) {
    EXPECT_EQ(journal.processEnded(), "");
    stands(first, "file:///page");
    hostLoadsAndBegins(second, "https://one/");
    EXPECT_EQ(journal.processEnded(), "https://one/");
    EXPECT_EQ(journal.standing(), "");
    EXPECT_FALSE(journal.failed(second, Failure::other)) << "one report is enough";
    stands(third, "file:///page");
    EXPECT_EQ(journal.processEnded(), "file:///page");
}

TEST_F(LoadJournals, aFailureIsToldWithTheAddressThatWasAwaited) {
    hostLoadsAndBegins(first, "https://one/");
    EXPECT_EQ("https://one/", journal.failed(first, Failure::other)->failingUrl);

    hostLoadsAndBegins(second, "https://two/");
    platform::Error ofAnother = Failure::other;
    ofAnother.failingUrl = "https://redirected/";
    EXPECT_EQ("https://redirected/", journal.failed(second, ofAnother)->failingUrl);

    EXPECT_EQ(std::nullopt, journal.failed(third, Failure::other)->failingUrl);
}

TEST_F(LoadJournals, onlyThePolicysOwnCodeIsItsCancellation) {
    stands(first, "https://one/");
    journal.policyDecided("https://elsewhere/", false);
    platform::Error alike = Failure::interruptedByPolicy;
    alike.domain = "NSURLErrorDomain";
    EXPECT_TRUE(journal.failed(second, alike));
    EXPECT_FALSE(journal.failed(second, Failure::interruptedByPolicy));
}

TEST_F(LoadJournals, theHostsOwnLoadIsJudgedAsItWasWritten) {
    journal.hostLoads(first, "https://host.example/", "https://Host.Example/");
    EXPECT_EQ("https://Host.Example/", journal.asWritten("https://host.example/"));
    EXPECT_EQ("https://other.example/", journal.asWritten("https://other.example/"));
    EXPECT_EQ("", journal.asWritten(""));

    journal.policyDecided("https://host.example/", true);
    journal.started(first);
    journal.committed(first, "https://host.example/");
    EXPECT_EQ("https://host.example/", journal.asWritten("https://host.example/"));
}

TEST_F(LoadJournals, aWishForThePageThatIsOnItsWayChangesNothing) {
    const auto isLocal = [](const std::string& address) { return address == "file:///page"; };
    EXPECT_EQ(LoadJournal::Wish::load, journal.hostWishesFor(isLocal));
    hostLoadsAndBegins(first, "file:///page");

    EXPECT_EQ(LoadJournal::Wish::nothing, journal.hostWishesFor(isLocal));

    EXPECT_EQ("file:///page", journal.awaited());
    EXPECT_TRUE(journal.failed(first, Failure::other));
}

TEST_F(LoadJournals, aWishForThePageThatStandsGivesUpWhatWasToReplaceIt) {
    const auto isLocal = [](const std::string& address) { return address == "file:///page"; };
    stands(first, "file:///page");
    hostLoadsAndBegins(second, "https://one/");

    EXPECT_EQ(LoadJournal::Wish::stopLoading, journal.hostWishesFor(isLocal));

    EXPECT_EQ("file:///page", journal.newest());
    EXPECT_FALSE(journal.failed(second, Failure::other));
}

TEST_F(LoadJournals, aWishForAnotherPageThanStandsAndComesIsALoad) {
    const auto isLocal = [](const std::string& address) { return address == "file:///page"; };
    stands(first, "https://one/");
    hostLoadsAndBegins(second, "https://two/");

    EXPECT_EQ(LoadJournal::Wish::load, journal.hostWishesFor(isLocal));

    EXPECT_EQ("https://two/", journal.awaited());
}

} // namespace
} // namespace lumora
