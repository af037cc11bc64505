#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace lumora::testing {

/// An image in memory, to be damaged on purpose. Entries are found by their Rock Ridge name, which must be unique.
class ImageBytes {
  public:
    static constexpr std::size_t kSector = 2048;

    explicit ImageBytes(const std::filesystem::path& image);
    void save(const std::filesystem::path& image) const;

    [[nodiscard]] std::string& bytes() { return bytes_; }
    [[nodiscard]] std::size_t sectors() const { return bytes_.size() / kSector; }

    /// The name field of the primary volume descriptor, padded with blanks.
    void setVolumeName(std::string_view name);
    void setVolumeSectors(std::uint32_t sectors);
    /// The root folder's length as the volume descriptor gives it.
    void setRootSize(std::uint32_t bytes);

    /// Sectors in which a folder begins.
    [[nodiscard]] std::vector<std::size_t> folderSectors() const;

    /// Replaces the entry's name by one of the same length.
    void rename(std::string_view entry, std::string_view newName);
    /// Sets type and permissions.
    void setMode(std::string_view entry, std::uint32_t mode);
    void setSize(std::string_view entry, std::uint32_t size);
    void setSector(std::string_view entry, std::uint32_t sector);
    [[nodiscard]] std::uint32_t sectorOf(std::string_view entry) const;

  private:
    [[nodiscard]] std::size_t recordOf(std::string_view entry) const;
    void putBothEndian(std::size_t at, std::uint32_t value);

    std::string bytes_;
};

} // namespace lumora::testing
