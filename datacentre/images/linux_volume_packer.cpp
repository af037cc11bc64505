#include "images/tool.h"
#include "images/volume_packer.h"

namespace datacentre {

// ISO 9660 with Rock Ridge names and modes.
void packVolume(const std::filesystem::path& folder, const std::string& volumeName,
                const std::filesystem::path& image) {
    runTool({"xorriso", "-as", "mkisofs", "-R", "-V", volumeName, "-o", image.string(), folder.string()});
}

} // namespace datacentre
