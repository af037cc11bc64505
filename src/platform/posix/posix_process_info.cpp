#include "platform/posix/posix_process_info.h"

#include <fmt/format.h>

#include <execinfo.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <memory>

namespace lumora::platform::posix_backend {

namespace {

constexpr int kMaximumFrames = 128;

} // namespace

std::string PosixProcessInfo::processName() {
#ifdef __APPLE__
    return getprogname();
#else
    return program_invocation_short_name;
#endif
}

std::int64_t PosixProcessInfo::processIdentifier() { return ::getpid(); }

std::uint64_t PosixProcessInfo::currentThreadIdentifier() {
#ifdef __APPLE__
    std::uint64_t identifier = 0;
    pthread_threadid_np(nullptr, &identifier);
    return identifier;
#else
    return static_cast<std::uint64_t>(::gettid());
#endif
}

std::string PosixProcessInfo::localTimestamp() {
    const auto now = std::chrono::system_clock::now();
    const auto wholeSeconds = std::chrono::floor<std::chrono::seconds>(now);
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(now - wholeSeconds).count();

    const std::time_t time = std::chrono::system_clock::to_time_t(wholeSeconds);
    std::tm local{};
    localtime_r(&time, &local);
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}.{:03}", local.tm_year + 1900, local.tm_mon + 1,
                       local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec, milliseconds);
}

std::vector<std::string> PosixProcessInfo::callStackSymbols() {
    std::array<void*, kMaximumFrames> frames{};
    const int count = backtrace(frames.data(), kMaximumFrames);
    const std::unique_ptr<char*, decltype(&std::free)> symbols(backtrace_symbols(frames.data(), count),
                                                               &std::free);
    if (!symbols)
        return {};
    // The innermost frame is this function's own.
    const int first = std::min(1, count);
    return {symbols.get() + first, symbols.get() + count};
}

} // namespace lumora::platform::posix_backend
