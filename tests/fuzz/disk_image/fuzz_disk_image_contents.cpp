// The unpacking alone, without the checks that come before it in a mount: they refuse most changed images, and what
// keeps entries inside the volume must not lean on them.

#include "platform/linux/hdiutil/failure.h"
#include "platform/linux/hdiutil/tree_removal.h"
#include "platform/linux/hdiutil/volume_unpacker.h"
#include "platform/posix/unique_fd.h"
#include "scratch_folder.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cstddef>
#include <cstdint>

using lumora::fuzz::check;
using lumora::fuzz::ScratchFolder;
using lumora::platform::linux_backend::DiskImageFailure;
using lumora::platform::linux_backend::DiskImageLimits;
using lumora::platform::linux_backend::removeTree;
using lumora::platform::linux_backend::unpackIso;
using lumora::platform::posix_backend::UniqueFd;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ScratchFolder scratch;
    const UniqueFd image(scratch.saveImage(data, size));
    const UniqueFd room(::open(scratch.room().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    check(::mkdirat(room.get(), "volume", S_IRWXU) == 0, "the volume's folder is made");
    const UniqueFd volume(::openat(room.get(), "volume", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    try {
        unpackIso(image.get(), volume.get(), DiskImageLimits{16U << 20, 2000});
        ScratchFolder::checkLinks(scratch.room() / "volume");
    } catch (const DiskImageFailure& refused) {
        check(refused.what()[0] != '\0', "a refusal has a reason");
    }
    scratch.checkNeighbourhood();
    removeTree(room.get(), "volume");
    scratch.checkRoomIsEmpty();
    return 0;
}
