#include "server/exchange.h"

#include <charconv>
#include <string_view>

namespace datacentre {

namespace {

std::string percentDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned char byte = 0;
        const char* const digits = text.data() + i + 1;
        if (text[i] == '%' && i + 2 < text.size() &&
            std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
            decoded += static_cast<char>(byte);
            i += 2;
        } else {
            decoded += text[i];
        }
    }
    return decoded;
}

} // namespace

std::string ReceivedRequest::parameter(const std::string& name) const {
    std::string_view rest = query;
    while (!rest.empty()) {
        const auto end = rest.find('&');
        const auto pair = rest.substr(0, end);
        if (pair.starts_with(name) && pair.substr(name.size()).starts_with('='))
            return percentDecoded(pair.substr(name.size() + 1));
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    }
    return {};
}

} // namespace datacentre
