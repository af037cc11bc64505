#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace datacentre::agent {

/// What the application left for the agent: a marker line, then one line of pairs between ampersands.
///     OVRA_VARLO_IND
///     &key=123456789&webServerName=...&lumora_token=...&c_plugin=true&DC=...&email=...&is_custom_domain=...&
struct JoinDetails {
    std::filesystem::path file;
    bool present = false;
    unsigned mode = 0; ///< the file's permission bits
    std::string bytes; ///< as they lie in the file
    std::string marker;
    std::vector<std::pair<std::string, std::string>> pairs; ///< in the file's order
    /// Marker, exactly two lines, no line feed at the end, an ampersand at both ends, every pair with its equals sign.
    bool wellFormed = false;

    /// The value of the first pair of that name; empty when absent.
    [[nodiscard]] std::string value(const std::string& key) const;
};

[[nodiscard]] std::filesystem::path joinDetailsFile(const std::filesystem::path& home);

/// Never throws: a file that cannot be read counts as not present.
[[nodiscard]] JoinDetails readJoinDetails(const std::filesystem::path& file);

/// Fills marker, pairs and wellFormed from `bytes`.
void parseJoinDetails(JoinDetails& details);

} // namespace datacentre::agent
