#include "support/backend.h"
#include "support/temporary_folder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <sstream>
#include <thread>

namespace lumora::contract {
namespace {

using platform::TaskOutput;

class TasksContract : public testing::Test {
  protected:
    std::string captured(const std::string& script) {
        const auto result = tasks_->run("/bin/sh", {"-c", script}, TaskOutput::capture);
        return result ? result.value().standardOutput : result.error().localizedDescription;
    }

    std::unique_ptr<platform::TaskRunner> tasks_ = makeTasks();
    TemporaryFolder folder_;
};

TEST_F(TasksContract, argumentsArriveExactly) {
    const auto result = tasks_->run(
        "/usr/bin/printf", {"[%s]", "a b", "", "*", "\"q\"", "line\nfeed", "caf\u00e9"}, TaskOutput::capture);

    ASSERT_TRUE(result) << result.error().localizedDescription;
    EXPECT_EQ("[a b][][*][\"q\"][line\nfeed][caf\u00e9]", result.value().standardOutput);
    EXPECT_EQ(0, result.value().terminationStatus);
}

TEST_F(TasksContract, terminationStatusIsTheExitStatusOrTheSignal) {
    EXPECT_EQ(0, tasks_->run("/usr/bin/true", {}, TaskOutput::discard).value().terminationStatus);
    EXPECT_EQ(37, tasks_->run("/bin/sh", {"-c", "exit 37"}, TaskOutput::discard).value().terminationStatus);
    EXPECT_EQ(SIGKILL,
              tasks_->run("/bin/sh", {"-c", "kill -9 $$"}, TaskOutput::capture).value().terminationStatus);
}

TEST_F(TasksContract, aToolThatNeverStartsIsAnError) {
    writeFile(folder_ / "data", "no program");
    ::chmod((folder_ / "data").c_str(), 0644);

    const auto missing = tasks_->run(folder_ / "missing", {}, TaskOutput::capture);
    const auto notExecutable = tasks_->run(folder_ / "data", {}, TaskOutput::capture);
    const auto relative = tasks_->run("true", {}, TaskOutput::capture);
    const auto cutArgument = tasks_->run("/usr/bin/true", {std::string("a\0b", 3)}, TaskOutput::discard);

    ASSERT_FALSE(missing);
    EXPECT_EQ(ENOENT, errnoOf(missing.error()));
    ASSERT_FALSE(notExecutable);
    EXPECT_EQ(EACCES, errnoOf(notExecutable.error()));
    ASSERT_FALSE(relative);
    EXPECT_EQ(ENOENT, errnoOf(relative.error()));
    EXPECT_FALSE(cutArgument);
}

TEST_F(TasksContract, largeOutputIsCapturedWhole) {
    EXPECT_EQ(3000000U, captured("head -c 3000000 /dev/zero").size());
}

TEST_F(TasksContract, discardedOutputIsNotTold) {
    EXPECT_EQ("", tasks_->run("/bin/echo", {"text"}, TaskOutput::discard).value().standardOutput);
}

TEST_F(TasksContract, childGetsNoDescriptorOfOursAndHarmlessStreams) {
    if (!std::filesystem::exists("/proc/self/fd"))
        GTEST_SKIP() << "only /proc shows what a child was given";
    const int inherited = ::open("/etc/passwd", O_RDONLY); // deliberately without close-on-exec
    ASSERT_GE(inherited, 3);

    const std::string seen =
        captured("for f in /proc/self/fd/*; do echo ${f##*/}=$(readlink /proc/$$/fd/${f##*/}); done");
    ::close(inherited);

    EXPECT_THAT(seen, testing::HasSubstr("0=/dev/null\n"));
    EXPECT_THAT(seen, testing::HasSubstr("1=pipe:"));
    EXPECT_THAT(seen, testing::HasSubstr("2=/dev/null\n"));
    EXPECT_THAT(seen, testing::Not(testing::HasSubstr("passwd")));
}

TEST_F(TasksContract, discardedOutputGoesToTheNullDevice) {
    if (!std::filesystem::exists("/proc/self/fd"))
        GTEST_SKIP() << "only /proc shows what a child was given";
    const std::string target = folder_ / "streams";
    ASSERT_TRUE(tasks_->run("/bin/sh", {"-c", "readlink /proc/$$/fd/1 > " + target}, TaskOutput::discard));
    ASSERT_TRUE(tasks_->run("/bin/sh", {"-c", "ls -l /proc/$$/fd/2 /proc/$$/fd/0 >> " + target},
                            TaskOutput::discard));

    EXPECT_THAT(contentsOf(target), testing::HasSubstr("/fd/2 -> /dev/null"));
    EXPECT_THAT(contentsOf(target), testing::HasSubstr("/fd/0 -> /dev/null"));
}

TEST_F(TasksContract, signalMaskAndHandlersAreTheDefaults) {
    if (!std::filesystem::exists("/proc/self/fd"))
        GTEST_SKIP() << "only /proc shows what a child was given";
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    ::sigaction(SIGPIPE, &ignore, nullptr);
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, nullptr);

    const std::string seen = captured("sed -n 's/^SigBlk:\t//p; s/^SigIgn:\t//p' /proc/self/status");

    // Signals 32 and 33 are the C library's own business.
    std::istringstream masks(seen);
    std::string mask;
    int masksSeen = 0;
    for (; std::getline(masks, mask); ++masksSeen)
        EXPECT_EQ(0U, std::stoull(mask, nullptr, 16) & 0x7fffffffU) << seen;
    EXPECT_EQ(2, masksSeen);
}

TEST_F(TasksContract, toolsRunSideBySide) {
    std::vector<std::thread> threads;
    std::vector<std::string> outputs(8);
    for (std::size_t index = 0; index < outputs.size(); ++index) {
        threads.emplace_back([&, index] {
            for (int round = 0; round < 20; ++round)
                outputs[index] += captured(fmt::format("echo {}", index));
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    for (std::size_t index = 0; index < outputs.size(); ++index) {
        std::string expected;
        for (int round = 0; round < 20; ++round)
            expected += fmt::format("{}\n", index);
        EXPECT_EQ(expected, outputs[index]);
    }
}

} // namespace
} // namespace lumora::contract
