#include "config/log_handler_test.h"
#include "config/session_details.h"
#include "fakes/log_lines.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace lumora {
namespace {

using fakes::exceptionLine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// --- the folder and the start -------------------------------------------------------------------------------------

class LogFolder : public Logging {
  protected:
    LogFolder() { handler->setOvraLumoraLogFolder(""); }
};

TEST_F(LogFolder, isStoredWithItsDoubledSlashAndCreated) {
    handler->createOvraLumoraLogFolder();

    EXPECT_EQ(handler->ovraLumoraLogFolder(), kLogFolder);
    EXPECT_TRUE(files.folderExists(kLogFolder));
    EXPECT_THAT(files.journal, ElementsAre("mkdir " + kLogFolder));
    EXPECT_THAT(streams.logged(),
                ElementsAre("-[LogHandler createOvraLumoraLogFolder] Ovra Lumora Log Folder Created..."));
}

TEST_F(LogFolder, thatExistsAlreadyIsSuccessToo) {
    files.putFolder(kLogFolder);

    handler->createOvraLumoraLogFolder();

    EXPECT_THAT(streams.logged(),
                ElementsAre("-[LogHandler createOvraLumoraLogFolder] Ovra Lumora Log Folder Created..."));
}

TEST_F(LogFolder, thatCannotBeCreatedStopsNothing) {
    files.failCreateFolder(kLogFolder);

    handler->createOvraLumoraLogFolder();

    EXPECT_THAT(
        streams.logged(),
        ElementsAre(
            "-[LogHandler createOvraLumoraLogFolder] Failed to Create Ovra Lumora Log Folder... Error "
            "Domain=NSCocoaErrorDomain Code=513 \"The folder could not be created.\""));
    EXPECT_THAT(streams.reopened, ElementsAre(kLive));
    EXPECT_EQ(loop.validTimers(), 1U);
}

TEST_F(LogFolder, isCreatedThroughTheSessionsFileManager) {
    fakes::FakeFileManager otherFiles;
    SessionDetails::getInstance().setDefaultOvraDirectoryManager(&otherFiles);

    handler->createOvraLumoraLogFolder();

    EXPECT_TRUE(otherFiles.folderExists(kLogFolder));
    EXPECT_FALSE(files.folderExists(kLogFolder));
}

TEST_F(LogFolder, onePassRunsBeforeThereIsATimer) {
    std::vector<std::size_t> timersAtPass;
    streams.onReopen = [&](const std::string&) {
        EXPECT_EQ(handler->loggingTimer(), nullptr);
        timersAtPass.push_back(loop.timers.size());
    };

    handler->createOvraLumoraLogFolder();

    EXPECT_THAT(timersAtPass, ElementsAre(0U));
    EXPECT_NE(handler->loggingTimer(), nullptr);
}

TEST_F(LogFolder, exceptionIsLoggedUnderItsName) {
    loop.throwOnScheduleTimer = true;

    handler->createOvraLumoraLogFolder();

    EXPECT_EQ(streams.logged().back(), exceptionLine("-[LogHandler createOvraLumoraLogFolder]", "no timer"));
}

TEST_F(LogFolder, firstPassThatFailsDoesNotKeepTheTimerFromStarting) {
    streams.onReopen = [](const std::string&) { throw std::runtime_error("cannot reopen"); };

    handler->createOvraLumoraLogFolder();

    EXPECT_EQ(streams.logged().back(), exceptionLine("-[LogHandler loggingFile:]", "cannot reopen"));
    EXPECT_EQ(loop.validTimers(), 1U);
}

// --- the timer ----------------------------------------------------------------------------------------------------

class LoggingTimer : public Logging {};

TEST_F(LoggingTimer, firesEveryTenthOfASecondInCommonModes) {
    handler->startLoggingTimer();

    ASSERT_EQ(loop.timers.size(), 1U);
    EXPECT_EQ(loop.timers[0]->interval.count(), 0.10000000149011612);
    EXPECT_EQ(loop.timers[0]->mode, platform::TimerMode::commonModes);
    EXPECT_NE(handler->loggingTimer(), nullptr);
}

TEST_F(LoggingTimer, everyTickIsAPass) {
    handler->startLoggingTimer();

    loop.fireTimers();
    loop.fireTimers();

    EXPECT_THAT(streams.reopened, ElementsAre(kLive, kLive));
}

TEST_F(LoggingTimer, keepsFiringAfterAnException) {
    handler->startLoggingTimer();
    streams.onReopen = [](const std::string&) { throw std::runtime_error("cannot reopen"); };
    loop.fireTimers();
    streams.onReopen = [](const std::string&) {};

    files.putFile(kLive, full('a'));
    loop.fireTimers();

    EXPECT_EQ(mark(0), 'a');
}

TEST_F(LoggingTimer, keepsTheHandlerAlive) {
    const std::weak_ptr<LogHandler> watched = handler;
    handler->startLoggingTimer();
    handler.reset();

    loop.fireTimers();

    EXPECT_FALSE(watched.expired());
    EXPECT_THAT(streams.reopened, ElementsAre(kLive));
}

TEST_F(LoggingTimer, handlerEndsWithTheLoop) {
    const std::weak_ptr<LogHandler> watched = handler;
    {
        fakes::FakeMainLoop shortLoop;
        platform::ports().mainLoop = &shortLoop;
        handler->startLoggingTimer();
        handler.reset();
        ASSERT_FALSE(watched.expired());
    }

    EXPECT_TRUE(watched.expired());
}

// --- the pass -----------------------------------------------------------------------------------------------------

class LogPass : public Logging {};

TEST_F(LogPass, reopensTheStreamsOnTheLiveLogFirst) {
    files.putFile(kLive, full('a'));
    std::vector<std::string> journalAtReopen{"not reopened"};
    streams.onReopen = [&](const std::string&) { journalAtReopen = files.journal; };

    pass();

    EXPECT_THAT(streams.reopened, ElementsAre(kLive));
    EXPECT_THAT(journalAtReopen, IsEmpty());
}

TEST_F(LogPass, readsTheSizeOnceTheStreamsAreReopened) {
    streams.onReopen = [this](const std::string& path) { files.putFile(path, full('a')); };

    pass();

    EXPECT_EQ(mark(0), 'a');
}

TEST_F(LogPass, exactlyTheLimitBelowIsNotRotated) {
    files.putFile(kLive, std::string(kLimit - 1, 'a'));

    pass();

    EXPECT_EQ(files.file(kLive)->contents.size(), kLimit - 1);
    EXPECT_THAT(files.journal, IsEmpty());
    EXPECT_EQ(handler->logFileNameCount(), 0);
}

TEST_F(LogPass, oneByteMoreIsRotated) {
    files.putFile(kLive, std::string(kLimit, 'a'));

    pass();

    EXPECT_EQ(files.file(kLive)->contents, "");
    EXPECT_EQ(files.file(backup(0))->contents, std::string(kLimit, 'a'));
    EXPECT_EQ(handler->logFileNameCount(), 1);
}

TEST_F(LogPass, missingLiveLogIsNotRotated) {
    pass();

    EXPECT_THAT(files.journal, IsEmpty());
    EXPECT_EQ(handler->logFileNameCount(), 0);
    EXPECT_THAT(streams.logged(), IsEmpty());
}

TEST_F(LogPass, exceptionIsLoggedUnderItsName) {
    streams.onReopen = [](const std::string&) { throw std::runtime_error("cannot reopen"); };

    pass();

    EXPECT_THAT(streams.logged(), ElementsAre(exceptionLine("-[LogHandler loggingFile:]", "cannot reopen")));
}

} // namespace
} // namespace lumora
