#include "platform/posix/posix_process_info.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <thread>

namespace lumora::contract {

// Named, and not inlined, so that its symbol stands in the stack.
__attribute__((noinline)) std::vector<std::string> symbolsOfAKnownCaller(platform::ProcessInfo& process) {
    std::vector<std::string> symbols = process.callStackSymbols();
    symbols.shrink_to_fit(); // something after the call, which else could give up this frame
    return symbols;
}

namespace {

platform::posix_backend::PosixProcessInfo process;

TEST(ProcessInfoContract, tellsTheProcessAndItsName) {
    EXPECT_EQ(::getpid(), process.processIdentifier());
    EXPECT_EQ("lumora_contract_process_info", process.processName());
}

TEST(ProcessInfoContract, eachThreadHasItsOwnStableIdentifier) {
    std::uint64_t other = 0;
    std::thread([&] { other = process.currentThreadIdentifier(); }).join();

    EXPECT_EQ(process.currentThreadIdentifier(), process.currentThreadIdentifier());
    EXPECT_NE(process.currentThreadIdentifier(), other);
}

TEST(ProcessInfoContract, timestampIsLocalTimeWithMilliseconds) {
    ::setenv("TZ", "UTC-5:30", 1); // five and a half hours ahead of UTC
    ::tzset();
    const std::time_t before = std::time(nullptr) + (5 * 60 + 30) * 60;
    const std::string timestamp = process.localTimestamp();
    const std::time_t after = std::time(nullptr) + (5 * 60 + 30) * 60;

    ASSERT_THAT(timestamp,
                testing::MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}"));
    std::tm parsed{};
    ASSERT_NE(nullptr, ::strptime(timestamp.c_str(), "%Y-%m-%d %H:%M:%S", &parsed));
    const std::time_t told = ::timegm(&parsed);
    EXPECT_LE(before, told);
    EXPECT_GE(after, told);
}

TEST(ProcessInfoContract, callStackBeginsAtTheCaller) {
    const std::vector<std::string> symbols = symbolsOfAKnownCaller(process);

    ASSERT_GE(symbols.size(), 2U);
    // A sanitizer's own frame may come first.
    EXPECT_THAT(symbols[0] + symbols[1], testing::HasSubstr("symbolsOfAKnownCaller"));
}

} // namespace
} // namespace lumora::contract
