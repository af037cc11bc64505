#include "support/one_time_path_monitor.h"

#include <gtest/gtest.h>

#include <vector>

namespace lumora {
namespace {

using platform::PathStatus;

struct RecordingMonitor final : OneTimePathMonitor {
    ~RecordingMonitor() override { cancel(); }
    void begin(std::function<void(PathStatus)> given) override {
        ++begins;
        report = std::move(given);
    }
    void end() override { ++ends; }

    std::function<void(PathStatus)> report;
    int begins = 0;
    int ends = 0;
};

TEST(AOneTimePathMonitor, beginsAndEndsOnce) {
    RecordingMonitor monitor;

    monitor.start();
    monitor.start();
    EXPECT_EQ(1, monitor.begins);
    monitor.cancel();
    monitor.cancel();
    EXPECT_EQ(1, monitor.ends);
    monitor.start();
    EXPECT_EQ(1, monitor.begins);
}

TEST(AOneTimePathMonitor, neverBeginsOnceCancelledNorEndsWhatHasNotBegun) {
    RecordingMonitor monitor;

    monitor.cancel();
    monitor.start();

    EXPECT_EQ(0, monitor.begins);
    EXPECT_EQ(0, monitor.ends);
}

TEST(AOneTimePathMonitor, tellsTheHandlerOfTheMoment) {
    std::vector<int> told;
    RecordingMonitor monitor;
    monitor.start();
    monitor.report(PathStatus::satisfied); // to nobody

    monitor.setUpdateHandler([&](PathStatus status) {
        told.push_back(status == PathStatus::satisfied ? 1 : 2);
        monitor.setUpdateHandler([&](PathStatus) { told.push_back(3); });
    });
    monitor.report(PathStatus::unsatisfied);
    monitor.report(PathStatus::satisfied);

    EXPECT_EQ((std::vector<int>{2, 3}), told);
}

TEST(AOneTimePathMonitor, tellsNothingAfterItsEnd) {
    bool told = false;
    std::function<void(PathStatus)> report;
    {
        RecordingMonitor monitor;
        monitor.start();
        report = monitor.report;
        monitor.cancel();
        monitor.setUpdateHandler([&](PathStatus) { told = true; });
        report(PathStatus::satisfied);
    }
    report(PathStatus::satisfied);

    EXPECT_FALSE(told);
}

} // namespace
} // namespace lumora
