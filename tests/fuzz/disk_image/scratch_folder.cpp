#include "scratch_folder.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace lumora::fuzz {
namespace {

constexpr off_t kMeaninglessBytes = 16 * 2048;
constexpr const char* kNeighbourContents = "untouched";

bool startsWith(const std::filesystem::path& path, const std::filesystem::path& folder) {
    const auto relative = path.lexically_relative(folder);
    return !relative.empty() && *relative.begin() != "..";
}

} // namespace

void check(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "violated: %s\n", what);
        std::abort();
    }
}

ScratchFolder::ScratchFolder() {
    const bool inMemory = ::access("/dev/shm", W_OK) == 0;
    const std::filesystem::path parent = inMemory ? "/dev/shm" : std::filesystem::temp_directory_path();
    std::string pattern = (parent / "lumora-fuzz-XXXXXX").string();
    check(::mkdtemp(pattern.data()) != nullptr, "there is a temporary folder");
    folder_ = std::filesystem::canonical(pattern);
    room_ = folder_ / "room";
    image_ = folder_ / "image";
    neighbour_ = folder_ / "neighbour";
    std::filesystem::create_directory(room_);
    std::ofstream(neighbour_) << kNeighbourContents;
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored; // a folder left in the temporary files is no finding
    std::filesystem::remove_all(folder_, ignored);
}

int ScratchFolder::saveImage(const std::uint8_t* data, std::size_t size) const {
    const int file = ::open(image_.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    check(file >= 0 && ::pwrite(file, data, size, kMeaninglessBytes) == static_cast<ssize_t>(size),
          "image is saved");
    return file;
}

void ScratchFolder::checkNeighbourhood() const {
    std::ifstream stream(neighbour_);
    const std::string contents{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    check(contents == kNeighbourContents, "the neighbour is as it was");
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
        check(entry.path() == room_ || entry.path() == image_ || entry.path() == neighbour_,
              "nothing lands outside");
    }
}

void ScratchFolder::checkLinks(const std::filesystem::path& folder) {
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(
             folder, std::filesystem::directory_options::skip_permission_denied)) {
        if (entry.is_symlink()) {
            std::error_code failure;
            const auto target = std::filesystem::weakly_canonical(entry.path(), failure);
            check(failure || startsWith(target, folder), "links stay inside");
        }
    }
}

void ScratchFolder::checkRoomIsEmpty() const {
    check(std::filesystem::is_empty(room_), "nothing is left behind");
}

} // namespace lumora::fuzz
