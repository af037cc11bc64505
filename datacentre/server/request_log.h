#pragma once

#include "server/exchange.h"
#include "server/json_members.h"

#include <cstdint>
#include <mutex>
#include <string>

namespace datacentre {

/// Every https request since the last clearing, and one line each on standard error. Any thread.
class RequestLog {
  public:
    void add(const ReceivedRequest& request);
    void clear();
    [[nodiscard]] Json toJson() const;
    [[nodiscard]] std::size_t size() const;

  private:
    mutable std::mutex mutex_;
    std::uint64_t lastSequence_ = 0;
    Json entries_ = Json::array();
};

} // namespace datacentre
