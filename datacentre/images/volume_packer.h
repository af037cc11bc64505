#pragma once

#include <filesystem>
#include <string>

namespace datacentre {

/// Packs the folder's content into a disk image of the kind that this system's own image tool mounts. It stores files
/// unpacked and in one piece. Throws std::runtime_error with the tool's own words.
void packVolume(const std::filesystem::path& folder, const std::string& volumeName,
                const std::filesystem::path& image);

} // namespace datacentre
