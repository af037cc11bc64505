#pragma once

#include "platform/linux/hdiutil/volume_unpacker.h"
#include "platform/result.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace lumora::platform::linux_backend {

/// A volume that stands mounted.
struct Attachment {
    std::string image; ///< where it came from, control characters and what is no UTF-8 replaced
    std::filesystem::path mountPoint;
};

/// Mounts disk images by unpacking them, for systems whose kernel lets only root mount. What the program `hdiutil`
/// does, without its command line; may be used by several processes and threads at once.
///
/// A volume appears and disappears as a whole: it is unpacked in a hidden folder beside its place and then renamed. A
/// process that is killed on the way leaves only such a folder, which the same user's next mount or detach removes.
///
/// Failures are errors of domain "NSPOSIXErrorDomain" with the errno behind them, or "LumoraDiskImageErrorDomain" with
/// code 0 where the image or the argument itself is at fault. Their descriptions are one line.
class DiskImages {
  public:
    /// @param patience  how long a mount waits for those who copy something out of the volume that it takes the place of
    explicit DiskImages(std::filesystem::path volumesFolder = "/Volumes", DiskImageLimits limits = {},
                        std::chrono::milliseconds patience = std::chrono::minutes(1));

    /// Mounts the ISO 9660 image at the folder's entry of the volume's name. A volume that this user attached under the
    /// same name gives way to the new one; any other entry of that name is an error and stays as it is.
    [[nodiscard]] Result<Attachment> mount(const std::filesystem::path& image);

    /// Removes the volume at `mountPoint`, an absolute path that may end in slashes, if this user attached it; changes
    /// made in it meanwhile are lost. Anything else there is an error and stays as it is. So does a volume that somebody
    /// copies something out of, which he tells by a shared lock on its folder (EBUSY).
    [[nodiscard]] Result<void> detach(const std::filesystem::path& mountPoint);

    /// This user's mounted volumes, by name.
    [[nodiscard]] Result<std::vector<Attachment>> attachments();

  private:
    std::filesystem::path folder_;
    DiskImageLimits limits_;
    std::chrono::milliseconds patience_;
};

} // namespace lumora::platform::linux_backend
