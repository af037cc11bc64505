#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace lumora::platform {

/// Facts about the running process. Callable from any thread.
class ProcessInfo {
  public:
    virtual ~ProcessInfo() = default;

    [[nodiscard]] virtual std::string processName() = 0;
    [[nodiscard]] virtual std::int64_t processIdentifier() = 0;

    /// The system's own number for the calling thread.
    [[nodiscard]] virtual std::uint64_t currentThreadIdentifier() = 0;

    /// Local time as "2026-11-21 09:41:07.123", for log lines.
    [[nodiscard]] virtual std::string localTimestamp() = 0;

    /// The symbols of the calling thread's stack, innermost first.
    [[nodiscard]] virtual std::vector<std::string> callStackSymbols() = 0;
};

} // namespace lumora::platform
