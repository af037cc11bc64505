#include "image_bytes.h"

#include "image_maker.h"

#include <stdexcept>

namespace lumora::testing {
namespace {

constexpr std::size_t kDescriptor = 16 * ImageBytes::kSector;

std::string nameField(std::string_view name) {
    std::string field = "NM";
    field += static_cast<char>(name.size() + 5);
    field += '\1';
    field += '\0';
    return field.append(name);
}

} // namespace

ImageBytes::ImageBytes(const std::filesystem::path& image) : bytes_(readFile(image)) {}

void ImageBytes::save(const std::filesystem::path& image) const { writeFile(image, bytes_); }

void ImageBytes::setVolumeName(std::string_view name) {
    std::string field(name);
    field.resize(32, ' ');
    bytes_.replace(kDescriptor + 40, 32, field);
}

void ImageBytes::setVolumeSectors(std::uint32_t sectors) { putBothEndian(kDescriptor + 80, sectors); }

void ImageBytes::setRootSize(std::uint32_t bytes) { putBothEndian(kDescriptor + 156 + 10, bytes); }

std::vector<std::size_t> ImageBytes::folderSectors() const {
    std::vector<std::size_t> found;
    for (std::size_t sector = 18; sector < sectors(); ++sector) {
        const auto* record = reinterpret_cast<const unsigned char*>(bytes_.data() + sector * kSector);
        const std::size_t self = record[2] | (std::size_t{record[3]} << 8) | (std::size_t{record[4]} << 16);
        if (record[0] >= 34 && record[32] == 1 && record[33] == 0 && self == sector) {
            found.push_back(sector);
        }
    }
    return found;
}

void ImageBytes::rename(std::string_view entry, std::string_view newName) {
    if (entry.size() != newName.size()) {
        throw std::logic_error("names differ in length");
    }
    const std::size_t record = recordOf(entry);
    bytes_.replace(bytes_.find(nameField(entry), record) + 5, newName.size(), newName);
}

void ImageBytes::setMode(std::string_view entry, std::uint32_t mode) {
    const std::size_t record = recordOf(entry);
    const std::size_t field = bytes_.find("PX", record);
    if (field > record + static_cast<unsigned char>(bytes_[record])) {
        throw std::logic_error("no attributes");
    }
    putBothEndian(field + 4, mode);
}

void ImageBytes::setSize(std::string_view entry, std::uint32_t size) {
    putBothEndian(recordOf(entry) + 10, size);
}

void ImageBytes::setSector(std::string_view entry, std::uint32_t sector) {
    putBothEndian(recordOf(entry) + 2, sector);
}

std::uint32_t ImageBytes::sectorOf(std::string_view entry) const {
    const auto* record = reinterpret_cast<const unsigned char*>(bytes_.data() + recordOf(entry));
    return record[2] | (std::uint32_t{record[3]} << 8) | (std::uint32_t{record[4]} << 16);
}

std::size_t ImageBytes::recordOf(std::string_view entry) const {
    const std::string field = nameField(entry);
    std::size_t found = std::string::npos;
    for (const std::size_t sector : folderSectors()) {
        for (std::size_t at = sector * kSector; bytes_[at] != 0;) {
            const std::size_t length = static_cast<unsigned char>(bytes_[at]);
            if (std::string_view(bytes_).substr(at, length).find(field) != std::string_view::npos) {
                if (found != std::string::npos) {
                    throw std::logic_error("more than one entry of that name");
                }
                found = at;
            }
            at += length;
        }
    }
    if (found == std::string::npos) {
        throw std::logic_error("no entry of that name");
    }
    return found;
}

void ImageBytes::putBothEndian(std::size_t at, std::uint32_t value) {
    for (std::size_t index = 0; index < 4; ++index) {
        const char byte = static_cast<char>((value >> (8 * index)) & 0xff);
        bytes_[at + index] = byte;
        bytes_[at + 7 - index] = byte;
    }
}

} // namespace lumora::testing
