#pragma once

#include "platform/posix/unique_fd.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumora::platform::linux_backend {

/// Which folder a volume is, beyond its name. A file system may give a removed folder's inode number to the next one,
/// so the time of birth counts as well. No device number: records lie in the file system that they speak of, and its
/// number may differ after the next start of the machine.
struct VolumeIdentity {
    std::uint64_t inode = 0;
    std::int64_t bornSeconds = 0; ///< both 0 where the file system keeps no time of birth
    std::uint32_t bornNanoseconds = 0;

    [[nodiscard]] bool operator==(const VolumeIdentity&) const = default;

    /// Of the folder open as `folder`. Throws DiskImageFailure.
    [[nodiscard]] static VolumeIdentity of(int folder);
};

struct AttachmentRecord {
    std::string image; ///< the path it was mounted from, for a person to read
    /// The volume, and the one that it took the place of: a process that ends between writing the record and renaming
    /// leaves either of them at the mount point, and both are ours.
    std::vector<VolumeIdentity> identities;
};

/// What the caller's user has attached, one small file a volume in a hidden folder beside the volumes. Each user has a
/// folder of his own that nobody else writes, so a record cannot be planted. Call under the lock of the volumes' folder.
class AttachmentRecords {
  public:
    explicit AttachmentRecords(int volumes);

    /// Nothing if there is no record, or none that can be understood.
    [[nodiscard]] std::optional<AttachmentRecord> find(const std::string& volume) const;
    [[nodiscard]] std::vector<std::string> volumes() const;

    /// Throws DiskImageFailure; the record before it then still stands.
    void write(const std::string& volume, const AttachmentRecord& record) const;
    void erase(const std::string& volume) const;

  private:
    enum class IfAbsent { create, leave };
    [[nodiscard]] posix_backend::UniqueFd open(IfAbsent ifAbsent) const;

    int volumes_;
    std::string folderName_;
};

} // namespace lumora::platform::linux_backend
