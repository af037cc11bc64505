#pragma once

#include <string>
#include <string_view>

namespace lumora {

/// The per-user folder in which the agent lives; ends with a slash.
[[nodiscard]] std::string agentFolder();

/// An entry of the agent's folder, e.g. "OvraPingAgent".
[[nodiscard]] std::string inAgentFolder(std::string_view name);

/// The installed agent's bundle.
[[nodiscard]] std::string installedAgentPath();

/// The agent's disk image between download and installation.
[[nodiscard]] std::string agentImagePath();

} // namespace lumora
