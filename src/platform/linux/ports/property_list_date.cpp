#include "platform/linux/ports/property_list_date.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>
#include <ctime>

namespace lumora::platform::linux_backend {

namespace {

constexpr std::int64_t kReferenceDate = 978307200; // 2001-01-01T00:00:00Z in Unix time
constexpr std::int64_t kYear1 = -62135596800;      // 0001-01-01T00:00:00Z
constexpr std::int64_t kYear10000 = 253402300800;  // 10000-01-01T00:00:00Z

} // namespace

std::optional<std::string> xmlDate(PropertyListDate date) {
    const double unixTime = std::floor(date.secondsSinceReferenceDate) + static_cast<double>(kReferenceDate);
    // Written so that a not-a-number fails too.
    if (!(unixTime >= static_cast<double>(kYear1) && unixTime < static_cast<double>(kYear10000)))
        return std::nullopt;
    const auto seconds = static_cast<std::time_t>(unixTime);
    std::tm parts{};
    if (gmtime_r(&seconds, &parts) == nullptr)
        return std::nullopt;
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", parts.tm_year + 1900, parts.tm_mon + 1,
                       parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
}

std::optional<PropertyListDate> dateFromXml(const std::string& text) {
    std::tm parts{};
    const char* end = ::strptime(text.c_str(), "%Y-%m-%dT%H:%M:%SZ", &parts);
    if (end == nullptr || *end != '\0')
        return std::nullopt;
    return PropertyListDate{static_cast<double>(timegm(&parts) - kReferenceDate)};
}

} // namespace lumora::platform::linux_backend
