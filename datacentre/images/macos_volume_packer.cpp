#include "images/tool.h"
#include "images/volume_packer.h"

namespace datacentre {

// HFS+, read-only and not compressed.
void packVolume(const std::filesystem::path& folder, const std::string& volumeName,
                const std::filesystem::path& image) {
    runTool({"hdiutil", "create", "-volname", volumeName, "-fs", "HFS+", "-format", "UDRO", "-srcfolder",
             folder.string(), image.string()});
}

} // namespace datacentre
