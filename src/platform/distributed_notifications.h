#pragma once

#include <cstdint>
#include <string>

namespace lumora::platform {

/// The system-wide broadcast to other processes. Callable from any thread; losing one is not an error.
class DistributedNotifications {
  public:
    virtual ~DistributedNotifications() = default;

    /// Posts the name with no sender and a payload of one integer entry.
    virtual void post(const std::string& name, const std::string& key, std::int64_t value) = 0;
};

} // namespace lumora::platform
