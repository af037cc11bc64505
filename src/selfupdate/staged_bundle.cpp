#include "selfupdate/staged_bundle.h"

#include "platform/file_manager.h"
#include "platform/ports.h"

namespace lumora {

std::string stagingFolder() {
    return platform::ports().fileManager->homeDirectory() +
           "/Library/Application Support/OvraLumoraNativeFolder/";
}

std::string lumoraImagePath() { return stagingFolder() + "OvraTesselLumora.dmg"; }

// A chain may still hold either at exit: they are never destroyed.

std::mutex& imageMutex() {
    static auto* mutex = new std::mutex;
    return *mutex;
}

std::mutex& stagedBundleMutex() {
    static auto* mutex = new std::mutex;
    return *mutex;
}

} // namespace lumora
