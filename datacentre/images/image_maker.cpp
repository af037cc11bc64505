#include "images/image_maker.h"

#include "images/volume_packer.h"

#include <fmt/format.h>

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace datacentre {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void throwErrno(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

} // namespace

ScratchFolder::ScratchFolder() {
    std::string pattern = (fs::temp_directory_path() / "datacentre-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throwErrno("making a temporary folder");
    path_ = pattern;
}

ScratchFolder::~ScratchFolder() {
    std::error_code leftBehind; // nothing better can be done about it here
    fs::remove_all(path_, leftBehind);
}

void writeFile(const fs::path& file, std::string_view content, unsigned mode) {
    fs::create_directories(file.parent_path());
    std::ofstream output(file, std::ios::binary | std::ios::trunc);
    output.write(content.data(), static_cast<std::streamsize>(content.size()));
    output.close();
    if (!output)
        throw std::runtime_error(fmt::format("cannot write {}", file.string()));
    fs::permissions(file, fs::perms(mode));
}

void makeImage(const fs::path& folder, const std::string& volumeName, const fs::path& image) {
    // The ending is one that every tool leaves as it is.
    const fs::path unfinished = fmt::format("{}.{}.new.dmg", image.string(), getpid());
    fs::remove(unfinished);
    try {
        packVolume(folder, volumeName, unfinished);
    } catch (...) {
        fs::remove(unfinished);
        throw;
    }
    fs::rename(unfinished, image);
}

} // namespace datacentre
