#pragma once

#include <exception>
#include <optional>
#include <string>

namespace lumora {

/// The lines that both data-centre lookups (start-up and bridge) write, each under its own name.

/// Says that there is no key to look up; nothing for a key that has text.
void logMissingDataCentreKey(const char* operation, const std::optional<std::string>& key);

void logDataCentreLookup(const char* operation, const std::optional<std::string>& key,
                         const std::optional<std::string>& host);

/// The lookups' own, shorter exception line.
void logDataCentreException(const char* operation, const std::exception& exception);

} // namespace lumora
