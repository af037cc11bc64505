#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace lumora::testing {

/// Everything that counts about a folder's entries: by relative path ("." is the folder itself) the type, mode,
/// modification time in seconds, and the contents or the link's target.
using TreePicture = std::map<std::string, std::string>;

[[nodiscard]] TreePicture pictureOf(const std::filesystem::path& folder);

/// The names in a folder, sorted, hidden ones too.
[[nodiscard]] std::vector<std::string> namesIn(const std::filesystem::path& folder);

} // namespace lumora::testing
