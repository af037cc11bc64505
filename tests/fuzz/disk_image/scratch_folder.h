#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace lumora::fuzz {

/// One temporary folder a fuzzer, with the room that images unpack into and a neighbour that none may touch. In memory
/// where the machine has a memory file system. Checks end the process, which the fuzzer counts as a finding.
class ScratchFolder {
  public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    /// Where images unpack.
    [[nodiscard]] const std::filesystem::path& room() const { return room_; }

    /// Saves an image whose first 16 sectors, which mean nothing, are missing in `data`; an open descriptor to it.
    [[nodiscard]] int saveImage(const std::uint8_t* data, std::size_t size) const;
    [[nodiscard]] const std::filesystem::path& image() const { return image_; }

    /// The neighbour is as it was and has no company.
    void checkNeighbourhood() const;
    /// All links below `folder` lead to places in `folder`, as the system resolves them.
    static void checkLinks(const std::filesystem::path& folder);
    /// The room is empty.
    void checkRoomIsEmpty() const;

  private:
    std::filesystem::path folder_;
    std::filesystem::path room_;
    std::filesystem::path image_;
    std::filesystem::path neighbour_;
};

/// Ends the process with a message unless `holds`.
void check(bool holds, const char* what);

} // namespace lumora::fuzz
