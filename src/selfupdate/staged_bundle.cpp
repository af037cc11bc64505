#include "selfupdate/staged_bundle.h"

#include "platform/file_manager.h"
#include "platform/ports.h"

namespace lumora {

namespace {

// A chain may still hold a mutex at exit: they are never destroyed.

std::mutex& stagedBundleMutex() {
    static auto* mutex = new std::mutex;
    return *mutex;
}

} // namespace

std::string stagingFolder() {
    return platform::ports().fileManager->homeDirectory() +
           "/Library/Application Support/OvraLumoraNativeFolder/";
}

std::string lumoraImagePath() { return stagingFolder() + "OvraTesselLumora.dmg"; }

std::mutex& imageMutex() {
    static auto* mutex = new std::mutex;
    return *mutex;
}

StagedBundleTurn::StagedBundleTurn()
    : amongChains_(stagedBundleMutex()),
      amongProcesses_(platform::ports().fileManager->holdFolder(stagingFolder())) {}

} // namespace lumora
