#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace lumora::platform::linux_backend {

inline constexpr std::uint32_t kSectorBytes = 2048;

/// A run of sectors, its length in bytes.
struct IsoExtent {
    std::uint32_t sector = 0;
    std::uint32_t bytes = 0;
};

/// What an image's primary volume descriptor says.
struct IsoVolume {
    std::string name;          ///< the volume identifier, without its padding; fit to be a folder's name
    std::uint32_t sectors = 0; ///< the length of the volume, all of which the image file holds
    IsoExtent root;            ///< the root folder
};

/// Reads the primary volume descriptor of the image open as `image`. Throws DiskImageFailure if the file is not an
/// ISO 9660 image, is shorter than the volume it announces, or has a name that cannot be a folder in /Volumes.
[[nodiscard]] IsoVolume readIsoVolume(int image);

/// Walks every folder of the volume and throws DiskImageFailure unless all records are well-formed and lie within the
/// volume. libarchive passes over a folder whose sectors are blank, as in a half-written image, without a word; this
/// walk is what notices. No more than `maximumRecords` records are accepted.
void checkIsoDirectories(int image, const IsoVolume& volume, std::size_t maximumRecords);

} // namespace lumora::platform::linux_backend
