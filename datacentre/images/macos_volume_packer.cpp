#include "images/tool.h"
#include "images/volume_packer.h"

#include <chrono>
#include <stdexcept>
#include <thread>

namespace datacentre {

namespace {

// What looks through every new volume on a Mac can hold one that is to become an image.
constexpr int kTries = 5;
constexpr std::chrono::seconds kPause{2};

} // namespace

// HFS+, read-only and not compressed.
void packVolume(const std::filesystem::path& folder, const std::string& volumeName,
                const std::filesystem::path& image) {
    for (int tries = 1;; ++tries) {
        try {
            return runTool({"hdiutil", "create", "-ov", "-volname", volumeName, "-fs", "HFS+", "-format",
                            "UDRO", "-srcfolder", folder.string(), image.string()});
        } catch (const std::runtime_error&) {
            if (tries == kTries)
                throw;
        }
        std::this_thread::sleep_for(kPause);
    }
}

} // namespace datacentre
