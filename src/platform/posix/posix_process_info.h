#pragma once

#include "platform/process_info.h"

namespace lumora::platform::posix_backend {

/// ProcessInfo from the C library.
class PosixProcessInfo final : public ProcessInfo {
  public:
    std::string processName() override;
    std::int64_t processIdentifier() override;
    std::uint64_t currentThreadIdentifier() override;
    std::string localTimestamp() override;
    std::vector<std::string> callStackSymbols() override;
};

} // namespace lumora::platform::posix_backend
