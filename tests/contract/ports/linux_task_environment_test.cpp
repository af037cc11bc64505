#include "platform/linux/ports/linux_task_runner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

namespace lumora::contract {
namespace {

using platform::TaskOutput;
using platform::linux_backend::LinuxTaskRunner;

TEST(TaskEnvironment, isTheGivenOne) {
    ::setenv("ADDED_FOR_OUR_WINDOW", "1", 1);
    LinuxTaskRunner tasks({"PATH=/usr/bin:/bin", "KEPT=yes"});

    const auto result = tasks.run("/usr/bin/env", {}, TaskOutput::capture);

    ASSERT_TRUE(result);
    EXPECT_EQ("PATH=/usr/bin:/bin\nKEPT=yes\n", result.value().standardOutput);
}

TEST(TaskEnvironment, isASnapshotOfTheProcesss) {
    ::setenv("LUMORA_SNAPSHOT", "first", 1);
    const auto snapshot = platform::linux_backend::currentEnvironment();
    ::setenv("LUMORA_SNAPSHOT", "second", 1);

    EXPECT_THAT(snapshot, testing::Contains("LUMORA_SNAPSHOT=first"));
    EXPECT_THAT(snapshot, testing::Not(testing::Contains("LUMORA_SNAPSHOT=second")));
}

TEST(TaskSubstitution, runsTheOtherToolInPlace) {
    LinuxTaskRunner tasks({}, {{"/usr/bin/hdiutil", "/bin/echo"}});

    EXPECT_EQ(
        "detach /Volumes/X\n",
        tasks.run("/usr/bin/hdiutil", {"detach", "/Volumes/X"}, TaskOutput::capture).value().standardOutput);
}

} // namespace
} // namespace lumora::contract
