#include "platform/linux/ports/property_list_date.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>
#include <ctime>

namespace lumora::platform::linux_backend {

namespace {

constexpr std::int64_t kReferenceDate = 978307200; // 2001-01-01T00:00:00Z in Unix time

} // namespace

std::string xmlDate(PropertyListDate date) {
    const auto seconds =
        static_cast<std::time_t>(std::floor(date.secondsSinceReferenceDate)) + kReferenceDate;
    std::tm parts{};
    gmtime_r(&seconds, &parts);
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
