#include "desktop.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <thread>

namespace lumora::contract {

using ::testing::ExitedWithCode;

/// The end of the application may be that of its process: each case has one of its own.
class TheApplication : public ::testing::Test {
  protected:
    TheApplication() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(TheApplication, terminateReturnsToItsCallerFirst) {
    const auto steps = [](platform::Application& application) {
        application.terminate();
        std::fputs("returned", stderr);
    };
    EXPECT_EXIT(runApplication(steps), ExitedWithCode(0), "returned");
}

TEST_F(TheApplication, terminateMayBeCalledFromAnyThread) {
    const auto steps = [](platform::Application& application) {
        std::thread([&application] { application.terminate(); }).detach();
    };
    EXPECT_EXIT(runApplication(steps), ExitedWithCode(0), "");
}

} // namespace lumora::contract
