#include "platform/linux/hdiutil/disk_images.h"

#include "platform/linux/hdiutil/attachment_records.h"
#include "platform/linux/hdiutil/failure.h"
#include "platform/linux/hdiutil/iso_volume.h"
#include "platform/linux/hdiutil/volumes_folder.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <new>
#include <optional>
#include <thread>
#include <type_traits>
#include <utility>

namespace lumora::platform::linux_backend {
namespace {

using posix_backend::UniqueFd;

constexpr auto kPause = std::chrono::milliseconds(20);

enum class Occupant { nobody, ownVolume, stranger };

/// What stands at a mount point.
struct MountPoint {
    Occupant occupant = Occupant::nobody;
    VolumeIdentity identity; // of an own volume
    std::string image;       // that it was mounted from
};

MountPoint examine(const VolumesFolder& volumes, const std::string& name) {
    const UniqueFd found(
        ::openat(volumes.descriptor(), name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    MountPoint mountPoint;
    if (!found) {
        mountPoint.occupant = errno == ENOENT ? Occupant::nobody : Occupant::stranger;
        return mountPoint;
    }
    mountPoint.occupant = Occupant::stranger;
    struct stat volume {};
    struct stat parent {};
    if (::fstat(found.get(), &volume) != 0 || ::fstat(volumes.descriptor(), &parent) != 0)
        throwErrno("cannot examine " + printable(name));
    // A different device means that something real is mounted there.
    if (volume.st_dev != parent.st_dev || volume.st_uid != ::geteuid())
        return mountPoint;
    const auto record = AttachmentRecords(volumes.descriptor()).find(name);
    mountPoint.identity = VolumeIdentity::of(found.get());
    if (record && std::count(record->identities.begin(), record->identities.end(), mountPoint.identity) > 0) {
        mountPoint.occupant = Occupant::ownVolume;
        mountPoint.image = record->image;
    }
    return mountPoint;
}

UniqueFd openImage(const std::filesystem::path& path) {
    // Non-blocking, for a pipe in its place must not hold us up.
    UniqueFd image(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat attributes {};
    if (!image || ::fstat(image.get(), &attributes) != 0)
        throwErrno("cannot open " + printable(path.string()));
    if (!S_ISREG(attributes.st_mode))
        throw DiskImageFailure(printable(path.string()) + " is not a file");
    return image;
}

/// Puts the prepared folder at its place, where nothing stands. Where the file system does not know the flag, the
/// lock and the examination before have to do.
void putInPlace(int volumes, const std::string& prepared, const std::string& place) {
    if (::renameat2(volumes, prepared.c_str(), volumes, place.c_str(), RENAME_NOREPLACE) == 0)
        return;
    if (errno != EINVAL && errno != ENOSYS)
        throwErrno("cannot mount at " + printable(place));
    if (::renameat(volumes, prepared.c_str(), volumes, place.c_str()) != 0)
        throwErrno("cannot mount at " + printable(place));
}

/// The prepared folder and the one at the place change names; without support for that, over a third name.
void exchange(int volumes, const std::string& prepared, const std::string& place) {
    if (::renameat2(volumes, prepared.c_str(), volumes, place.c_str(), RENAME_EXCHANGE) == 0)
        return;
    if (errno != EINVAL && errno != ENOSYS)
        throwErrno("cannot replace " + printable(place));
    const std::string third = VolumesFolder::asideName(place);
    if (::renameat(volumes, place.c_str(), volumes, third.c_str()) != 0)
        throwErrno("cannot replace " + printable(place));
    if (::renameat(volumes, prepared.c_str(), volumes, place.c_str()) != 0) {
        const int reason = errno;
        static_cast<void>(::renameat(volumes, third.c_str(), volumes, place.c_str()));
        errno = reason;
        throwErrno("cannot replace " + printable(place));
    }
    if (::renameat(volumes, third.c_str(), volumes, prepared.c_str()) != 0)
        throwErrno("cannot put the former " + printable(place) + " aside");
}

void refuseStranger(const MountPoint& mountPoint, const std::filesystem::path& path) {
    if (mountPoint.occupant == Occupant::stranger) {
        throw DiskImageFailure(printable(path.string()) +
                               " exists and is not a volume attached by this user");
    }
}

/// The place of a new volume, nobody else's for as long as this lives.
struct Place {
    UniqueFd lock; // of the volumes' folder
    MountPoint before;
    UniqueFd former; // the volume that stands there, if it is ours, locked
};

/// Waits for whoever copies something out of the former volume: renamed under him, it would come to nothing. Who does so
/// for longer than the patience counts as hung.
Place takePlace(const VolumesFolder& volumes, const std::string& name, const std::filesystem::path& path,
                std::chrono::milliseconds patience) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (;;) {
        Place place{volumes.lock(), examine(volumes, name), {}};
        refuseStranger(place.before, path);
        if (place.before.occupant == Occupant::nobody)
            return place;
        std::optional<UniqueFd> claimed = volumes.claim(name);
        if (claimed || std::chrono::steady_clock::now() >= deadline) {
            place.former = std::move(claimed).value_or(UniqueFd());
            return place;
        }
        place.lock = UniqueFd();
        std::this_thread::sleep_for(kPause);
    }
}

Attachment mountImage(const std::filesystem::path& folder, const DiskImageLimits& limits,
                      std::chrono::milliseconds patience, const std::filesystem::path& imagePath) {
    const UniqueFd image = openImage(imagePath);
    const IsoVolume volume = readIsoVolume(image.get());
    checkIsoDirectories(image.get(), volume, limits.entries);

    const VolumesFolder volumes(folder);
    const std::filesystem::path path = folder / volume.name;
    // Destroyed last, outside the lock: removing may take long.
    std::vector<AsideFolder> abandoned;
    std::optional<AsideFolder> aside;
    {
        const UniqueFd lock = volumes.lock();
        refuseStranger(examine(volumes, volume.name), path);
        abandoned = volumes.takeAbandoned();
        aside.emplace(volumes.makeAside(volume.name));
    }
    abandoned.clear(); // before unpacking, which may need the room

    unpackIso(image.get(), aside->descriptor(), limits);

    Place place = takePlace(volumes, volume.name, path, patience);
    const MountPoint& before = place.before;
    AttachmentRecord record{std::filesystem::absolute(imagePath).string(),
                            {VolumeIdentity::of(aside->descriptor())}};
    if (before.occupant == Occupant::ownVolume)
        record.identities.push_back(before.identity);
    AttachmentRecords(volumes.descriptor()).write(volume.name, record);
    if (before.occupant == Occupant::ownVolume) {
        exchange(volumes.descriptor(), aside->name(), volume.name);
        aside->standFor(std::move(place.former));
    } else {
        putInPlace(volumes.descriptor(), aside->name(), volume.name);
        aside->keep();
    }
    return {printable(record.image), path};
}

/// The name of the volume that a mount point in `folder` stands for.
std::string volumeAt(const std::filesystem::path& folder, const std::filesystem::path& mountPoint) {
    std::string text = mountPoint.string();
    text.erase(text.find_last_not_of('/') + 1);
    const std::filesystem::path plain = text;
    std::string name = plain.filename().string();
    if (plain.parent_path() != folder || name.empty() || name.front() == '.')
        throw DiskImageFailure("\"" + printable(mountPoint.string()) + "\" is not a mount point");
    return name;
}

void detachVolume(const std::filesystem::path& folder, const std::filesystem::path& mountPoint) {
    const std::string name = volumeAt(folder, mountPoint);
    const VolumesFolder volumes(folder);
    std::vector<AsideFolder> abandoned;
    std::optional<AsideFolder> aside;
    {
        const UniqueFd lock = volumes.lock();
        abandoned = volumes.takeAbandoned();
        if (examine(volumes, name).occupant != Occupant::ownVolume)
            throw DiskImageFailure("no volume attached by this user at " + printable(mountPoint.string()));
        std::optional<UniqueFd> claimed = volumes.claim(name);
        if (!claimed)
            throw DiskImageFailure(printable(mountPoint.string()) + " is in use", EBUSY);
        // Out of sight in one step, whatever the removal then meets.
        std::string hidden = VolumesFolder::asideName(name);
        if (::renameat(volumes.descriptor(), name.c_str(), volumes.descriptor(), hidden.c_str()) != 0)
            throwErrno("cannot detach " + printable(mountPoint.string()));
        aside.emplace(volumes.descriptor(), std::move(hidden), std::move(*claimed));
        AttachmentRecords(volumes.descriptor()).erase(name);
    }
    aside->remove();
}

std::vector<Attachment> listAttachments(const std::filesystem::path& folder) {
    const VolumesFolder volumes(folder);
    const UniqueFd lock = volumes.lock();
    std::vector<std::string> names = AttachmentRecords(volumes.descriptor()).volumes();
    std::sort(names.begin(), names.end());
    std::vector<Attachment> attachments;
    for (const std::string& name : names)
        if (const MountPoint found = examine(volumes, name); found.occupant == Occupant::ownVolume)
            attachments.push_back({found.image, folder / name});
    return attachments;
}

/// The one place where failures become values.
template <class Operation>
auto guarded(Operation operation) -> Result<decltype(operation())> {
    try {
        if constexpr (std::is_void_v<decltype(operation())>) {
            operation();
            return {};
        } else {
            return operation();
        }
    } catch (const DiskImageFailure& failure) {
        const bool systems = failure.errorNumber() != 0;
        return Error{systems ? "NSPOSIXErrorDomain" : "LumoraDiskImageErrorDomain", failure.errorNumber(),
                     failure.what(), std::nullopt};
    } catch (const std::bad_alloc&) {
        return Error{"NSPOSIXErrorDomain", ENOMEM, "not enough memory for this image", std::nullopt};
    }
}

} // namespace

DiskImages::DiskImages(std::filesystem::path volumesFolder, DiskImageLimits limits,
                       std::chrono::milliseconds patience)
    : folder_(std::move(volumesFolder)), limits_(limits), patience_(patience) {}

Result<Attachment> DiskImages::mount(const std::filesystem::path& image) {
    return guarded([&] { return mountImage(folder_, limits_, patience_, image); });
}

Result<void> DiskImages::detach(const std::filesystem::path& mountPoint) {
    return guarded([&] { detachVolume(folder_, mountPoint); });
}

Result<std::vector<Attachment>> DiskImages::attachments() {
    return guarded([&] { return listAttachments(folder_); });
}

} // namespace lumora::platform::linux_backend
