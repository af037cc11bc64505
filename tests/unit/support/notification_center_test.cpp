#include "support/notification_center.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace lumora {
namespace {

using ::testing::ElementsAre;

class Notifications : public ::testing::Test {
  protected:
    /// An observer that writes its name down.
    NotificationCenter::Handler noting(std::string name) {
        return [this, name = std::move(name)](const void*) { journal.push_back(name); };
    }

    NotificationCenter center;
    std::vector<std::string> journal;
    int first = 0, second = 0; ///< their addresses identify two observers
};

TEST_F(Notifications, reachObserversInTheOrderAdded) {
    center.addObserver(&second, "A", noting("second"));
    center.addObserver(&first, "A", noting("first"));

    center.post("A", nullptr);

    EXPECT_THAT(journal, ElementsAre("second", "first"));
}

TEST_F(Notifications, reachOnlyTheirName) {
    center.addObserver(&first, "A", noting("first"));

    center.post("B", nullptr);

    EXPECT_THAT(journal, ElementsAre());
}

TEST_F(Notifications, tellWhoPosted) {
    const void* seen = nullptr;
    center.addObserver(&first, "A", [&seen](const void* sender) { seen = sender; });

    center.post("A", &second);

    EXPECT_EQ(seen, &second);
}

TEST_F(Notifications, runOnThePostingThread) {
    std::thread::id seen;
    center.addObserver(&first, "A", [&seen](const void*) { seen = std::this_thread::get_id(); });

    std::thread poster([this] { center.post("A", nullptr); });
    const auto posterId = poster.get_id();
    poster.join();

    EXPECT_EQ(seen, posterId);
}

TEST_F(Notifications, forgetARemovedObserverForEveryName) {
    center.addObserver(&first, "A", noting("first A"));
    center.addObserver(&first, "B", noting("first B"));
    center.addObserver(&second, "A", noting("second A"));

    center.removeObserver(&first);
    center.post("A", nullptr);
    center.post("B", nullptr);

    EXPECT_THAT(journal, ElementsAre("second A"));
}

TEST_F(Notifications, aHandlerMayRemoveItself) {
    center.addObserver(&first, "A", [this](const void*) {
        center.removeObserver(&first);
        journal.emplace_back("first");
    });

    center.post("A", nullptr);
    center.post("A", nullptr);

    EXPECT_THAT(journal, ElementsAre("first"));
}

TEST_F(Notifications, theDefaultCentreIsOne) {
    EXPECT_EQ(&NotificationCenter::defaultCenter(), &NotificationCenter::defaultCenter());
}

} // namespace
} // namespace lumora
