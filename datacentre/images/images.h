#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace datacentre {

inline constexpr const char* kAgentImageName = "OvraMac.dmg";
inline constexpr const char* kApplicationImageName = "OvraTesselLumora.dmg";
inline constexpr const char* kDefaultAgentVersion = "12.4.0";

/// The agent's image: volume "Ovra" with the bundle around `agentProgram`, its companion programs and their tools
/// folder. Both throw std::exception with a text for the terminal.
void makeAgentImage(const std::filesystem::path& image, const std::filesystem::path& agentProgram,
                    const std::string& version);

/// The self-update's image: volume "Lumora Plugin" with a copy of `bundle`, its version replaced when one is given.
void makeApplicationImage(const std::filesystem::path& image, const std::filesystem::path& bundle,
                          const std::optional<std::string>& version);

} // namespace datacentre
