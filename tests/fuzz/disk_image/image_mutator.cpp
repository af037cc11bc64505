// Left to itself the fuzzer mostly breaks the numbers that ISO 9660 stores twice, and is refused for that. So most
// changes go to one sector of descriptors or folder records, and the twins are made to agree again.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maximumSize);

namespace {

constexpr std::size_t kSector = 2048;
constexpr std::size_t kFirstSector = 16; // where the fuzzed bytes begin in the image
constexpr std::size_t kShortestRecord = 34;

using Bytes = std::span<std::uint8_t>;

/// The big-endian twin behind the little-endian number of `width` bytes.
void repairTwin(Bytes bytes, std::size_t at, std::size_t width) {
    if (at + 2 * width <= bytes.size()) {
        std::reverse_copy(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                          bytes.begin() + static_cast<std::ptrdiff_t>(at + width),
                          bytes.begin() + static_cast<std::ptrdiff_t>(at + width));
    }
}

void repairRecord(Bytes record) {
    repairTwin(record, 2, 4);
    repairTwin(record, 10, 4);
    constexpr std::array<std::uint8_t, 2> kAttributes{'P', 'X'}; // mode, links, user, group
    const auto attributes = std::search(record.begin(), record.end(), kAttributes.begin(), kAttributes.end());
    for (std::size_t field = 0; field < 4 && attributes != record.end(); ++field) {
        repairTwin(record, static_cast<std::size_t>(attributes - record.begin()) + 4 + 8 * field, 4);
    }
}

void repairSector(Bytes sector, bool isDescriptor) {
    if (isDescriptor) {
        repairTwin(sector, 80, 4);
        repairTwin(sector, 128, 2);
        repairRecord(sector.subspan(156, kShortestRecord));
        return;
    }
    while (sector.size() >= kShortestRecord && sector[0] >= kShortestRecord && sector[0] <= sector.size()) {
        repairRecord(sector.first(sector[0]));
        sector = sector.subspan(sector[0]);
    }
}

/// A folder's first record speaks of the sector that it stands in.
bool beginsFolder(Bytes sector, std::size_t number) {
    return sector[0] >= kShortestRecord && sector[2] == ((number + kFirstSector) & 0xff) && sector[32] == 1 &&
           sector[33] == 0;
}

std::vector<std::size_t> interestingSectors(Bytes image) {
    std::vector<std::size_t> found{0};
    for (std::size_t number = 1; (number + 1) * kSector <= image.size(); ++number) {
        if (beginsFolder(image.subspan(number * kSector, kSector), number)) {
            found.push_back(number);
        }
    }
    return found;
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maximumSize,
                                               unsigned seed) {
    std::minstd_rand random(seed);
    if (size < kSector || random() % 8 == 0) {
        return LLVMFuzzerMutate(data, size, maximumSize);
    }
    const Bytes image(data, size);
    const auto sectors = interestingSectors(image);
    const std::size_t number = sectors[random() % sectors.size()];
    const Bytes sector = image.subspan(number * kSector, kSector);
    // Records fill the front of a sector; changes behind them would be wasted.
    const std::size_t begin = random() % 1024;
    const std::size_t length = 1 + random() % 64;
    // Overwritten in place: a change of length would move everything behind it.
    std::vector<std::uint8_t> changed(sector.begin() + static_cast<std::ptrdiff_t>(begin),
                                      sector.begin() + static_cast<std::ptrdiff_t>(begin + length));
    LLVMFuzzerMutate(changed.data(), changed.size(), changed.size());
    std::copy(changed.begin(), changed.end(), sector.begin() + static_cast<std::ptrdiff_t>(begin));
    repairSector(sector, number == 0);
    return size;
}
