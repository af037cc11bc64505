#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace datacentre {

// A folder of its own below the system's temporary folder, gone again at the end of the scope.
class ScratchFolder {
  public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

// Writes a file with exactly this mode (the umask does not count), making its folder when needed.
void writeFile(const std::filesystem::path& file, std::string_view content, unsigned mode);

// Packs the folder's content into an ISO 9660 image with Rock Ridge names and modes, by xorriso. The image appears at `image`
// whole, by a rename: a server may be handing out the earlier one. Throws std::runtime_error with xorriso's own words.
void makeImage(const std::filesystem::path& folder, const std::string& volumeName,
               const std::filesystem::path& image);

} // namespace datacentre
