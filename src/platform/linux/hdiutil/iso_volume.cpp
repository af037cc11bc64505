#include "platform/linux/hdiutil/iso_volume.h"

#include "platform/linux/hdiutil/iso_fields.h"

#include <sys/stat.h>

#include <cstring>
#include <string_view>

namespace lumora::platform::linux_backend {
namespace {

constexpr std::uint32_t kFirstDescriptor = 16;
constexpr std::uint32_t kMostDescriptors = 64; // real images have two to five
constexpr std::uint8_t kPrimary = 1;
constexpr std::uint8_t kTerminator = 255;
constexpr std::string_view kMagic = "CD001";

constexpr std::size_t kNameAt = 40;
constexpr std::size_t kNameBytes = 32;
constexpr std::size_t kVolumeSectorsAt = 80;
constexpr std::size_t kBlockBytesAt = 128;
constexpr std::size_t kRootRecordAt = 156;
constexpr std::size_t kRootRecordBytes = 34;

/// A leading dot is refused as well: hidden names beside the volumes belong to the bookkeeping.
bool canNameVolume(std::string_view name) {
    return !name.empty() && name.front() != '.' && name.find('/') == std::string_view::npos &&
           printable(name) == name;
}

std::string volumeName(const IsoSector& descriptor) {
    std::string name(reinterpret_cast<const char*>(descriptor.data() + kNameAt), kNameBytes);
    // Writers pad with blanks, some with zeros.
    name.erase(name.find_last_not_of(std::string_view(" \0", 2)) + 1);
    if (!canNameVolume(name))
        throw DiskImageFailure("the image's volume name \"" + printable(name) + "\" cannot name a volume");
    return name;
}

IsoSector findPrimaryDescriptor(int image) {
    IsoSector sector;
    for (std::uint32_t number = kFirstDescriptor; number < kFirstDescriptor + kMostDescriptors; ++number) {
        readIsoSector(image, number, sector);
        if (std::memcmp(sector.data() + 1, kMagic.data(), kMagic.size()) != 0 || sector[0] == kTerminator)
            break;
        if (sector[0] == kPrimary)
            return sector;
    }
    throw DiskImageFailure("not an ISO 9660 image");
}

} // namespace

IsoVolume readIsoVolume(int image) {
    struct stat file {};
    if (::fstat(image, &file) != 0)
        throwErrno("cannot examine the image");
    if (file.st_size <= off_t{kFirstDescriptor} * kSectorBytes)
        throw DiskImageFailure("not an ISO 9660 image");
    const IsoSector descriptor = findPrimaryDescriptor(image);

    const auto sectors = bothEndian32(descriptor, kVolumeSectorsAt);
    const auto root = recordExtent(IsoBytes(descriptor).subspan(kRootRecordAt, kRootRecordBytes));
    if (!sectors || !root || bothEndian16(descriptor, kBlockBytesAt) != kSectorBytes)
        throw DiskImageFailure("the image's volume descriptor is damaged");
    if (off_t{*sectors} * kSectorBytes > file.st_size)
        throw DiskImageFailure("the image is truncated");
    return {volumeName(descriptor), *sectors, *root};
}

} // namespace lumora::platform::linux_backend
