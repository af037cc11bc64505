// Any bytes as a disk image: mounted whole or refused, nothing outside the volume, nothing left behind.

#include "platform/linux/hdiutil/disk_images.h"
#include "scratch_folder.h"

#include <unistd.h>

#include <cstddef>
#include <cstdint>

using lumora::fuzz::check;
using lumora::fuzz::ScratchFolder;
using lumora::platform::linux_backend::DiskImageLimits;
using lumora::platform::linux_backend::DiskImages;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ScratchFolder scratch;
    ::close(scratch.saveImage(data, size));

    DiskImages images(scratch.room(), DiskImageLimits{16U << 20, 2000});
    if (const auto mounted = images.mount(scratch.image()); mounted) {
        const auto& mountPoint = mounted.value().mountPoint;
        check(mountPoint.parent_path() == scratch.room(), "the mount point is among the volumes");
        ScratchFolder::checkLinks(mountPoint);
        const auto listed = images.attachments();
        check(listed && listed.value().size() == 1, "the volume is listed");
        check(static_cast<bool>(images.detach(mountPoint)), "the volume is detached");
    }
    scratch.checkRoomIsEmpty();
    scratch.checkNeighbourhood();
    return 0;
}
