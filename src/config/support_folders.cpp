#include "config/log_handler.h"
#include "config/utils.h"
#include "platform/file_manager.h"
#include "platform/ports.h"
#include "support/exception_guard.h"
#include "support/log.h"

namespace lumora {

namespace {

constexpr const char* kCreateDirectories = "+[Utils createLumoraDirectoriesWithLogHandler:]";

/// A support folder: where it lies under the home folder, and the name under which its lines speak of it.
struct SupportFolder {
    const char* operation;
    const char* path;
    const char* name;
};

// Only created: the folder belongs to another application of the same maker, which expects to find it.
constexpr SupportFolder kVarloFolder{"+[Utils createOvraVarloNativeFolder]",
                                     "/Library/Application Support/OvraVarloNative/", "Ovra Varlo Native"};

constexpr SupportFolder kLumoraFolder{"+[Utils createOvraLumoraNativeFolder]",
                                      "/Library/Application Support/OvraLumoraNativeFolder/",
                                      "Ovra Lumora Native"};

void createIfMissing(const SupportFolder& folder) {
    guarded(folder.operation, [&folder] {
        auto& files = *platform::ports().fileManager;
        const auto path = files.homeDirectory() + folder.path;
        if (files.fileExists(path))
            log("{} {} folder Already Present", folder.operation, folder.name);
        else if (files.createDirectoryWithIntermediates(path))
            log("{} {} Folder Created...", folder.operation, folder.name);
        else
            log("{} Failed to Create {} Folder...", folder.operation, folder.name);
    });
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

void Utils::createOvraVarloNativeFolder() { createIfMissing(kVarloFolder); }

void Utils::createOvraLumoraNativeFolder() { createIfMissing(kLumoraFolder); }

} // namespace lumora
