#include "config/log_handler.h"
#include "config/utils.h"
#include "platform/file_manager.h"
#include "platform/ports.h"
#include "support/exception_guard.h"
#include "support/log.h"

namespace lumora {

namespace {

constexpr const char* kCreateDirectories = "+[Utils createLumoraDirectoriesWithLogHandler:]";

/// A support folder: where it lies under the home folder, and its lines.
struct SupportFolder {
    const char* operation;
    const char* path;
    const char* created;
    const char* failed;
    const char* present;
};

// Only created, never written into.
constexpr SupportFolder kVarloFolder{
    "+[Utils createOvraVarloNativeFolder]",     "/Library/Application Support/OvraVarloNative/",
    "Ovra Varlo Native Folder Created...",      "Failed to Create Ovra Varlo Native Folder...",
    "Ovra Varlo Native folder Already Present",
};

constexpr SupportFolder kLumoraFolder{
    "+[Utils createOvraLumoraNativeFolder]",     "/Library/Application Support/OvraLumoraNativeFolder/",
    "Ovra Lumora Native Folder Created...",      "Failed to Create Ovra Lumora Native Folder...",
    "Ovra Lumora Native folder Already Present",
};

/// Creates what is missing; the line that tells what came of it.
const char* createIfMissing(const SupportFolder& folder) {
    auto& files = *platform::ports().fileManager;
    const auto path = files.homeDirectory() + folder.path;
    if (files.fileExists(path))
        return folder.present;
    return files.createDirectoryWithIntermediates(path) ? folder.created : folder.failed;
}

void createSupportFolder(const SupportFolder& folder) {
    guarded(folder.operation, [&folder] { log("{} {}", folder.operation, createIfMissing(folder)); });
}

/// The banner's lines end in a line feed of their own, to which the log call adds none.
void logBanner() {
    constexpr const char* kRule = "{} : ********************************************************* \n";
    log(kRule, kCreateDirectories);
    log("{} : ************* Ovra Lumora App Started ************ \n", kCreateDirectories);
    log(kRule, kCreateDirectories);
}

} // namespace

void Utils::createLumoraDirectoriesWithLogHandler(LogHandler* /*logHandler*/) {
    guarded(kCreateDirectories, [] {
        std::make_shared<LogHandler>()->createOvraLumoraLogFolder();
        logBanner();
        createOvraVarloNativeFolder();
        createOvraLumoraNativeFolder();
    });
}

void Utils::createOvraVarloNativeFolder() { createSupportFolder(kVarloFolder); }

void Utils::createOvraLumoraNativeFolder() { createSupportFolder(kLumoraFolder); }

} // namespace lumora
