#pragma once

#include <cstddef>
#include <cstdint>

namespace lumora::platform::linux_backend {

/// How much an image may unpack to.
struct DiskImageLimits {
    /// All file contents together; the free space is a limit as well.
    std::uint64_t bytes = std::uint64_t{8} << 30;

    /// Files, folders and links together.
    std::size_t entries = 200'000;
};

/// Unpacks the ISO 9660 image open as `image` into the empty folder open as `folder`, which takes over the times of the
/// volume's own root folder, and of its mode what concerns the caller: other users do not get in. Keeps names, contents,
/// links, modes and times.
///
/// As on a volume attached by an ordinary user, set-user-id, set-group-id and sticky bits are dropped and everything
/// belongs to the caller. Names that share their contents become separate files. Compressed images, formats other than
/// ISO 9660, device nodes, pipes and sockets, links that lead out of the volume, and anything that cannot be read whole
/// make it throw DiskImageFailure; what was unpacked until then is left for the caller to remove.
void unpackIso(int image, int folder, const DiskImageLimits& limits);

} // namespace lumora::platform::linux_backend
