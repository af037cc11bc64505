#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace datacentre {

/// A folder of its own below the system's temporary folder, gone again at the end of the scope.
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

/// Writes a file with exactly this mode (the umask does not count), making its folder when needed.
void writeFile(const std::filesystem::path& file, std::string_view content, unsigned mode);

/// Packs the folder's content into a disk image. It appears at `image` whole, by a rename: a server may be handing out
/// the earlier one. Throws std::runtime_error with the words of the tool that could not do it.
void makeImage(const std::filesystem::path& folder, const std::string& volumeName,
               const std::filesystem::path& image);

} // namespace datacentre
