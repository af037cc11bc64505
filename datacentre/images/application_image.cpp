#include "images/image_maker.h"
#include "images/image_version.h"
#include "images/images.h"

#include <fmt/format.h>

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace datacentre {

namespace fs = std::filesystem;

void makeApplicationImage(const fs::path& image, const fs::path& bundle,
                          const std::optional<std::string>& version) {
    // "Name.app/" names the same bundle as "Name.app".
    const fs::path source = bundle.has_filename() ? bundle : bundle.parent_path();
    if (!fs::is_regular_file(source / "Contents/Info.plist"))
        throw std::runtime_error(fmt::format("{} is no application bundle", source.string()));

    const ScratchFolder scratch;
    const fs::path volume = scratch.path() / "volume";
    const fs::path copy = volume / source.filename();
    fs::create_directories(volume);
    fs::copy(source, copy, fs::copy_options::recursive | fs::copy_options::copy_symlinks);

    if (version) {
        const fs::path list = copy / "Contents/Info.plist";
        std::ostringstream text;
        text << std::ifstream(list, std::ios::binary).rdbuf();
        writeFile(list, withVersion(text.str(), *version), 0644);
    }
    makeImage(volume, "Lumora Plugin", image);
}

} // namespace datacentre
