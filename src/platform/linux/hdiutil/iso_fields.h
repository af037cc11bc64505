#pragma once

#include "platform/linux/hdiutil/failure.h"
#include "platform/linux/hdiutil/iso_volume.h"

#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace lumora::platform::linux_backend {

using IsoSector = std::array<std::uint8_t, kSectorBytes>;
using IsoBytes = std::span<const std::uint8_t>;

/// Reads one whole sector or throws.
inline void readIsoSector(int image, std::uint32_t number, IsoSector& sector) {
    std::size_t have = 0;
    while (have < sector.size()) {
        const auto offset = static_cast<off_t>(number) * kSectorBytes + static_cast<off_t>(have);
        const ssize_t count = ::pread(image, sector.data() + have, sector.size() - have, offset);
        if (count < 0)
            throwErrno("cannot read the image");
        if (count == 0)
            throw DiskImageFailure("the image is truncated");
        have += static_cast<std::size_t>(count);
    }
}

/// ISO 9660 stores its numbers twice, least significant byte first and then last; a damaged one no longer agrees with
/// its twin and reads as nothing.
[[nodiscard]] inline std::optional<std::uint32_t> bothEndian32(IsoBytes bytes, std::size_t at) {
    std::uint32_t little = 0;
    std::uint32_t big = 0;
    for (std::size_t index = 0; index < 4; ++index) {
        little |= std::uint32_t{bytes[at + index]} << (8 * index);
        big = (big << 8) | bytes[at + 4 + index];
    }
    return little == big ? std::optional(little) : std::nullopt;
}

[[nodiscard]] inline std::optional<std::uint32_t> bothEndian16(IsoBytes bytes, std::size_t at) {
    const std::uint32_t little = bytes[at] | (std::uint32_t{bytes[at + 1]} << 8);
    const std::uint32_t big = (std::uint32_t{bytes[at + 2]} << 8) | bytes[at + 3];
    return little == big ? std::optional(little) : std::nullopt;
}

/// The extent in a folder record, if both its numbers are whole.
[[nodiscard]] inline std::optional<IsoExtent> recordExtent(IsoBytes record) {
    const auto sector = bothEndian32(record, 2);
    const auto bytes = bothEndian32(record, 10);
    if (!sector || !bytes)
        return std::nullopt;
    return IsoExtent{*sector, *bytes};
}

} // namespace lumora::platform::linux_backend
