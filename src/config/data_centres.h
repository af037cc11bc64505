#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumora {

/// The host of a data-centre key in the table; exact and case-sensitive.
[[nodiscard]] std::optional<std::string> dataCentreHost(std::string_view key);

/// The host of a developer's machine: the key (or the null placeholder), a dot, the developer suffix.
[[nodiscard]] std::string developerHost(const std::optional<std::string>& key);

/// The data-centre key behind the fourth digit of a ten-digit session key ('1' to '9').
[[nodiscard]] std::optional<std::string> dataCentreForDigit(char digit);

} // namespace lumora
