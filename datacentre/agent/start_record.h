#pragma once

#include "agent/join_details.h"

#include <filesystem>
#include <string>
#include <vector>

namespace datacentre::agent {

/// Where records go: the folder that OVRA_AGENT_RECORD_DIR names, else the agent's log folder below the home folder.
[[nodiscard]] std::filesystem::path recordFolder(const std::filesystem::path& home);

/// Everything about this start that a test may ask for, as JSON text (README.md lists the members).
[[nodiscard]] std::string describeStart(const std::vector<std::string>& arguments,
                                        const JoinDetails& details);

/// Writes agent-TIME-PID.json into the folder, whole or not at all. Throws std::exception.
void writeRecord(const std::filesystem::path& folder, const std::string& record);

} // namespace datacentre::agent
