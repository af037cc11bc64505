#include "server/timestamp.h"

#include <fmt/chrono.h>

#include <chrono>

namespace datacentre {

std::string timestamp() {
    using namespace std::chrono;
    const auto now = system_clock::now();
    const auto milliseconds = duration_cast<std::chrono::milliseconds>(now.time_since_epoch()) % 1000;
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}Z", fmt::gmtime(system_clock::to_time_t(now)),
                       milliseconds.count());
}

} // namespace datacentre
