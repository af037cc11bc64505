#pragma once

#include <string>

namespace lumora::platform::linux_backend {

/// Where disk images are unpacked to.
inline constexpr const char* kVolumesFolder = "/Volumes";

/// What forbids taking something out of the volume that the path leads into, as an errno: everybody may write the
/// folder of the volumes, as /tmp, and a bundle under an expected name there may be anyone's. Only the user's own
/// volumes and the administrator's are taken for what they seem; nobody else can then exchange them. 0 when nothing
/// forbids it, or the path leads elsewhere.
[[nodiscard]] int findVolumeObstacle(const std::string& path, const std::string& volumes = kVolumesFolder);

} // namespace lumora::platform::linux_backend
