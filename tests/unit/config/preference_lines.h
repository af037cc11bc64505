#pragma once

#include "fakes/log_lines.h"

#include <string>

namespace lumora {

// The lines about preferences.

inline std::string notFound(const std::string& key) {
    return "+[Utils preferenceForKey:] : Key '" + key +
           "' not found in any defaults domain (managed/user/system)";
}

inline std::string resolved(const std::string& key, const std::string& value) {
    return "+[Utils preferenceForKey:] : Key '" + key +
           "' resolved via NSUserDefaults search list (managed/user/system): " + value;
}

/// The guard's line after a preference that could not be read.
inline std::string unreadableLine(const std::string& operation) {
    return fakes::exceptionLine(operation, "defaults unavailable");
}

} // namespace lumora
