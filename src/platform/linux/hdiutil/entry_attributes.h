#pragma once

#include <sys/stat.h>

#include <array>
#include <ctime>
#include <string_view>

struct archive_entry;

namespace lumora::platform::linux_backend {

/// What is set on an unpacked entry once nothing more is written to it or into it. As it stands without more, the mode
/// of a plain folder and no times.
struct EntryAttributes {
    mode_t mode = S_IRWXU | S_IRGRP | S_IXGRP | S_IROTH | S_IXOTH;
    std::array<timespec, 2> times{timespec{0, UTIME_OMIT}, timespec{0, UTIME_OMIT}}; ///< accessed, modified

    /// The entry's own, its mode without the set-user-id, set-group-id and sticky bits.
    [[nodiscard]] static EntryAttributes of(archive_entry* entry);

    /// Sets them on the open file or folder; throws DiskImageFailure that names `path`.
    void apply(int descriptor, std::string_view path) const;
};

} // namespace lumora::platform::linux_backend
