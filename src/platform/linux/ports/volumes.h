#pragma once

#include "platform/posix/unique_fd.h"

#include <string>

namespace lumora::platform::linux_backend {

/// Where disk images are unpacked to.
inline constexpr const char* kVolumesFolder = "/Volumes";

/// The taking of something out of a volume, if the path leads into one. The volume is held, by a shared lock on its own
/// folder, for as long as this lives: the disk-image tool then neither detaches it nor puts another in its place.
class VolumeReading {
  public:
    explicit VolumeReading(const std::string& path, const std::string& volumes = kVolumesFolder);

    /// What forbids it, as an errno: everybody may write the folder of the volumes, as /tmp, and a bundle under an
    /// expected name there may be anyone's. Only the user's own volumes and the administrator's are taken for what they
    /// seem; nobody else can then exchange them. 0 when nothing forbids it, or the path leads elsewhere.
    [[nodiscard]] int obstacle() const { return obstacle_; }

  private:
    int obstacle_ = 0;
    posix_backend::UniqueFd hold_; ///< none where the volume cannot be locked
};

} // namespace lumora::platform::linux_backend
