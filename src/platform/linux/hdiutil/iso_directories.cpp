#include "platform/linux/hdiutil/iso_fields.h"
#include "platform/linux/hdiutil/iso_volume.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace lumora::platform::linux_backend {
namespace {

constexpr std::size_t kShortestRecord = 34;
constexpr std::uint32_t kLargestFolder = 64U << 20; // the image reader keeps a folder's records in memory
constexpr std::size_t kFlagsAt = 25;
constexpr std::uint8_t kFolderFlag = 0x02;
constexpr std::size_t kNameLengthAt = 32;
constexpr std::size_t kNameAt = 33;
constexpr std::uint8_t kSelfName = 0;
constexpr std::uint8_t kParentName = 1;

[[noreturn]] void damaged() { throw DiskImageFailure("the image's folder records are damaged"); }

class DirectoryWalk {
  public:
    DirectoryWalk(int image, const IsoVolume& volume, std::size_t maximumRecords)
        : image_(image), volume_(volume), recordsLeft_(maximumRecords), sectorsLeft_(volume.sectors) {}

    void run() {
        pending_.push_back(volume_.root);
        while (!pending_.empty()) {
            const IsoExtent folder = pending_.back();
            pending_.pop_back();
            checkFolder(folder);
        }
    }

  private:
    [[nodiscard]] bool fitsVolume(const IsoExtent& extent) const {
        const std::uint64_t sectors = (std::uint64_t{extent.bytes} + kSectorBytes - 1) / kSectorBytes;
        return std::uint64_t{extent.sector} + sectors <= volume_.sectors;
    }

    void checkFolder(const IsoExtent& folder) {
        const std::uint32_t sectors = folder.bytes / kSectorBytes;
        if (sectors == 0 || folder.bytes % kSectorBytes != 0 || !fitsVolume(folder) ||
            !seen_.insert(folder.sector).second)
            damaged();
        if (folder.bytes > kLargestFolder)
            throw DiskImageFailure("the image has too many entries");
        // Folders of a sound image never overlap, so together they cannot be longer than the volume.
        if (sectors > sectorsLeft_)
            damaged();
        sectorsLeft_ -= sectors;

        recordsInFolder_ = 0;
        IsoSector sector;
        for (std::uint32_t index = 0; index < sectors; ++index) {
            readIsoSector(image_, folder.sector + index, sector);
            checkSector(sector, folder);
        }
        if (recordsInFolder_ < 2)
            damaged();
    }

    void checkSector(IsoBytes sector, const IsoExtent& folder) {
        // A folder takes no more sectors than it has records for; a blank one has lost them.
        if (sector[0] == 0)
            damaged();
        while (!sector.empty() && sector[0] != 0) {
            const std::size_t length = sector[0];
            if (length < kShortestRecord || length > sector.size() ||
                kNameAt + sector[kNameLengthAt] > length || sector[kNameLengthAt] == 0)
                damaged();
            checkRecord(sector.first(length), folder);
            sector = sector.subspan(length);
        }
        // A blank in the middle of a sector would hide the records behind it.
        if (std::any_of(sector.begin(), sector.end(), [](std::uint8_t byte) { return byte != 0; }))
            damaged();
    }

    void checkRecord(IsoBytes record, const IsoExtent& folder) {
        const auto extent = recordExtent(record);
        if (!extent || !fitsVolume(*extent))
            damaged();
        const bool special = record[kNameLengthAt] == 1 && record[kNameAt] <= kParentName;
        const std::size_t position = recordsInFolder_++;
        if (position < 2) {
            // Every folder begins with itself and its parent.
            if (!special || record[kNameAt] != (position == 0 ? kSelfName : kParentName) ||
                (position == 0 && extent->sector != folder.sector))
                damaged();
            return;
        }
        if (special)
            damaged();
        if (recordsLeft_-- == 0)
            throw DiskImageFailure("the image has too many entries");
        if ((record[kFlagsAt] & kFolderFlag) != 0) {
            pending_.push_back(*extent);
        } else if (extent->bytes > 0 &&
                   fileSizes_.emplace(extent->sector, extent->bytes).first->second != extent->bytes) {
            // Files may share their contents, but then all of them. The image reader looks at the place alone.
            damaged();
        }
    }

    int image_;
    const IsoVolume& volume_;
    std::size_t recordsLeft_;
    std::uint32_t sectorsLeft_;
    std::size_t recordsInFolder_ = 0;
    std::unordered_set<std::uint32_t> seen_;
    std::unordered_map<std::uint32_t, std::uint32_t> fileSizes_; // by first sector
    std::vector<IsoExtent> pending_;
};

} // namespace

void checkIsoDirectories(int image, const IsoVolume& volume, std::size_t maximumRecords) {
    DirectoryWalk(image, volume, maximumRecords).run();
}

} // namespace lumora::platform::linux_backend
