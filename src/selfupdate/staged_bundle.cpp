#include "selfupdate/staged_bundle.h"

#include "platform/file_manager.h"
#include "platform/ports.h"

namespace lumora {

std::string stagingFolder() {
    return platform::ports().fileManager->homeDirectory() +
           "/Library/Application Support/OvraLumoraNativeFolder/";
}

std::string lumoraImagePath() { return stagingFolder() + "OvraTesselLumora.dmg"; }

std::mutex& stagedBundleMutex() {
    static auto* mutex = new std::mutex; // a chain may still hold it at exit
    return *mutex;
}

} // namespace lumora
