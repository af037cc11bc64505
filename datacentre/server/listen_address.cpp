#include "server/listen_address.h"

#include <fmt/format.h>

#include <charconv>
#include <stdexcept>

namespace datacentre {

namespace {

constexpr int kHighestPort = 65535;

}

ListenAddress ListenAddress::parse(const std::string& text) {
    const auto colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0)
        throw std::invalid_argument(fmt::format("\"{}\" is not ADDR:PORT", text));
    ListenAddress address{text.substr(0, colon), 0};
    const char* const end = text.data() + text.size();
    const auto [rest, failure] = std::from_chars(text.data() + colon + 1, end, address.port);
    if (failure != std::errc() || rest != end || address.port < 0 || address.port > kHighestPort)
        throw std::invalid_argument(fmt::format("\"{}\" has no port", text));
    if (address.host.size() > 2 && address.host.front() == '[' && address.host.back() == ']')
        address.host = address.host.substr(1, address.host.size() - 2);
    return address;
}

std::string ListenAddress::text() const {
    const bool bracketed = host.find(':') != std::string::npos;
    return bracketed ? fmt::format("[{}]:{}", host, port) : fmt::format("{}:{}", host, port);
}

} // namespace datacentre
