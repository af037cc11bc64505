#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace datacentre {

/// The certificates a server can show, by the names that the control interface uses.
inline constexpr std::array<std::string_view, 4> kCertificateNames = {"good", "unknown-authority",
                                                                      "wrong-host", "expired"};

/// Where the parts of a set lie below its data folder.
struct AuthorityPaths {
    explicit AuthorityPaths(const std::filesystem::path& dataFolder);

    [[nodiscard]] std::filesystem::path certificate(std::string_view name) const;
    [[nodiscard]] std::filesystem::path key(std::string_view name) const;

    std::filesystem::path authority;
    std::filesystem::path authorityKey;
    std::filesystem::path certificates;
};

enum class AuthorityOutcome { kept, made };

/// Sees to it that the folder holds a complete, valid set for exactly these hosts. What is there and still good stays,
/// so that a trust store that already knows the authority goes on working. Throws OpensslError or
/// std::filesystem::filesystem_error.
AuthorityOutcome ensureAuthority(const std::filesystem::path& dataFolder,
                                 const std::vector<std::string>& hosts);

} // namespace datacentre
