#pragma once

#include "agent/join_details.h"

#include <string>
#include <vector>

namespace datacentre::agent {

/// What the session's window says.
inline constexpr const char* kEndSession = "End session";

[[nodiscard]] std::string windowTitle(const JoinDetails& details);
[[nodiscard]] std::string heading(const JoinDetails& details);
[[nodiscard]] std::string stateText(const JoinDetails& details);

struct DetailRow {
    std::string name;
    std::string value; ///< a dash when there is none
};

[[nodiscard]] std::vector<DetailRow> detailRows(const JoinDetails& details);

} // namespace datacentre::agent
