#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumora {

/// The address when it is a well-formed URI reference (RFC 3986: no white space, no control characters, no stray
/// percent signs); nothing otherwise. A reference without a scheme parses too: using it is another matter.
[[nodiscard]] std::optional<std::string> parseUrl(std::string_view text);

/// The scheme exactly as written; empty without one. Also of an address that does not parse: engines' own may hold
/// characters that the grammar refuses, and what is wrong with an address is told after its scheme.
[[nodiscard]] std::string_view urlScheme(std::string_view url);

/// The host as written, when the address parses and names one: empty where its place is ("https://:80/", "file:///a").
[[nodiscard]] std::optional<std::string> urlHost(std::string_view url);

/// Percent-encodes every byte outside the set that a URL's query may carry as it is
/// (RFC 3986 `query`: unreserved, sub-delims, ":", "@", "/" and "?"); a percent sign is encoded too.
[[nodiscard]] std::string percentEncodeForQuery(std::string_view text);

} // namespace lumora
