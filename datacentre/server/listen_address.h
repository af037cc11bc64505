#pragma once

#include <string>

namespace datacentre {

/// "ADDR:PORT" of the command line; IPv6 addresses stand in brackets.
struct ListenAddress {
    std::string host;
    int port = 0; ///< 0 = any free one

    /// Throws std::invalid_argument.
    [[nodiscard]] static ListenAddress parse(const std::string& text);
    [[nodiscard]] std::string text() const;
};

} // namespace datacentre
