#include "config/log_handler.h"

#include "config/session_details.h"
#include "platform/file_manager.h"
#include "platform/ports.h"
#include "platform/standard_streams.h"
#include "support/exception_guard.h"
#include "support/log.h"
#include "support/rendering.h"

namespace lumora {

namespace {

constexpr const char* kCreateLogFolder = "-[LogHandler createOvraLumoraLogFolder]";
constexpr const char* kLoggingFile = "-[LogHandler loggingFile:]";

constexpr const char* kLiveLog = "ovraLumora.log";
constexpr std::uint64_t kRotationSize = 262145; // bytes: 256 KiB may stand, one byte more is rotated
constexpr std::int32_t kOldestBackup = 10;

constexpr std::chrono::duration<double> kInterval{static_cast<double>(0.1F)};

platform::FileManager& fileManager() { return *SessionDetails::getInstance().defaultOvraDirectoryManager(); }

bool isDueForRotation(const std::string& liveLog) {
    const auto size = fileManager().fileSize(liveLog);
    return size && size.value() >= kRotationSize;
}

} // namespace

std::string LogHandler::logFolder() {
    // Joined as text: the doubled slash is one separator to the file system.
    return platform::ports().fileManager->libraryDirectory() + "/Logs/" + "/OvraTessel/OvraLumora/";
}

void LogHandler::createOvraLumoraLogFolder() {
    guarded(kCreateLogFolder, [this] {
        setOvraLumoraLogFolder(logFolder());
        if (const auto created = fileManager().createDirectoryWithIntermediates(ovraLumoraLogFolder_))
            log("{} Ovra Lumora Log Folder Created...", kCreateLogFolder);
        else
            log("{} Failed to Create Ovra Lumora Log Folder... {}", kCreateLogFolder,
                render(created.error()));
        loggingFile(nullptr);
        startLoggingTimer();
    });
}

void LogHandler::startLoggingTimer() {
    // The timer holds its handler, and the handler its timer: both live until the process ends.
    auto action = [self = shared_from_this()] { self->loggingFile(self->loggingTimer()); };
    setLoggingTimer(platform::ports().mainLoop->scheduleTimer(kInterval, platform::TimerMode::commonModes,
                                                              std::move(action)));
}

void LogHandler::loggingFile(platform::Timer* /*timer*/) {
    guarded(kLoggingFile, [this] {
        const auto liveLog = ovraLumoraLogFolder_ + kLiveLog;
        platform::ports().standardStreams->reopenAll(liveLog);
        if (!isDueForRotation(liveLog))
            return;
        // Another instance of the application shares the files. What it is about to cut, or just did, must not be rotated
        // once more: an empty log would take the newest backup's place.
        const auto alone = fileManager().holdFolder(ovraLumoraLogFolder_);
        if (!isDueForRotation(liveLog))
            return;
        // A line written between the copy of the live log and its truncation would be lost.
        platform::ports().standardStreams->withWritersHeld([&] { rotate(liveLog); });
    });
}

void LogHandler::rotate(const std::string& liveLog) {
    auto& files = fileManager();
    const auto backup = [this](std::int32_t index) {
        return fmt::format("{}ovraLumora{}.log", ovraLumoraLogFolder_, index);
    };
    const auto count = logFileNameCount_;
    for (auto index = count; index >= 0; --index) {
        const auto target = backup(index);
        const auto source = index == 0 ? liveLog : backup(index - 1);
        // A source that is missing leaves its target absent: the gap moves up with the backups around it.
        if (files.fileExists(target))
            static_cast<void>(files.removeItem(target));
        static_cast<void>(files.copyItem(source, target));
    }
    if (count != kOldestBackup)
        setLogFileNameCount(count + 1);
    static_cast<void>(files.truncateFile(liveLog)); // not cut now, the next pass rotates again
}

} // namespace lumora
