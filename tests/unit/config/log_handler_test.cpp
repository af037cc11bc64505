#include "config/log_handler.h"
#include "config/session_details.h"
#include "fakes/core_test.h"
#include "fakes/log_lines.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace lumora {
namespace {

using fakes::exceptionLine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kLogFolder = "/Users/casey/Library/Logs//OvraTessel/OvraLumora/";
const std::string kLive = kLogFolder + "ovraLumora.log";
constexpr std::size_t kLimit = 262145;

std::string backup(int index) { return kLogFolder + "ovraLumora" + std::to_string(index) + ".log"; }

class Logging : public CoreTest {
  protected:
    Logging() { handler->setOvraLumoraLogFolder(kLogFolder); }

    /// A live log over the limit that can be told from every other.
    static std::string full(char mark) { return std::string(kLimit, mark); }

    void pass() { handler->loggingFile(nullptr); }

    /// What a backup holds, as its mark; '-' when it is absent.
    char mark(int index) {
        const auto* file = files.file(backup(index));
        return file == nullptr ? '-' : file->contents.front();
    }

    std::string marks() {
        std::string all;
        for (int index = 0; index <= 11; ++index)
            all += mark(index);
        return all;
    }

    void rotateWith(char character) {
        files.putFile(kLive, full(character));
        pass();
    }

    std::shared_ptr<LogHandler> handler = std::make_shared<LogHandler>();
};

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

// --- rotation -----------------------------------------------------------------------------------------------------

class Rotation : public Logging {};

TEST_F(Rotation, firstOneOfARunLeavesOlderBackupsOfEarlierRuns) {
    files.putFile(backup(0), "0");
    files.putFile(backup(1), "1");
    files.putFile(backup(10), "X");

    rotateWith('a');

    EXPECT_EQ(marks(), "a1--------X-");
    EXPECT_EQ(handler->logFileNameCount(), 1);
    EXPECT_THAT(files.journal, ElementsAre("remove " + backup(0), "copy " + kLive + " -> " + backup(0),
                                           "truncate " + kLive, "overwrite " + kLive));
}

TEST_F(Rotation, secondOneMovesTheFirstBackupUp) {
    rotateWith('a');
    files.journal.clear();

    rotateWith('b');

    EXPECT_EQ(marks(), "ba----------");
    EXPECT_EQ(handler->logFileNameCount(), 2);
    EXPECT_THAT(files.journal,
                ElementsAre("copy " + backup(0) + " -> " + backup(1), "remove " + backup(0),
                            "copy " + kLive + " -> " + backup(0), "truncate " + kLive, "overwrite " + kLive));
}

TEST_F(Rotation, countSaturatesAndTheOldestBackupIsOverwritten) {
    for (const char character : std::string("abcdefghij"))
        rotateWith(character);
    EXPECT_EQ(marks(), "jihgfedcba--");
    EXPECT_EQ(handler->logFileNameCount(), 10);

    rotateWith('k');
    EXPECT_EQ(marks(), "kjihgfedcba-");
    EXPECT_EQ(handler->logFileNameCount(), 10);

    rotateWith('l');
    EXPECT_EQ(marks(), "lkjihgfedcb-");
    EXPECT_EQ(handler->logFileNameCount(), 10);
}

TEST_F(Rotation, gapMovesUpByOneIndex) {
    for (const char character : std::string("abcd"))
        rotateWith(character);
    static_cast<void>(files.removeItem(backup(1)));
    ASSERT_EQ(marks(), "d-ba--------");

    rotateWith('e');
    EXPECT_EQ(marks(), "ed-ba-------");

    rotateWith('f');
    EXPECT_EQ(marks(), "fed-ba------");
    EXPECT_THAT(streams.logged(), IsEmpty());
}

TEST_F(Rotation, backupThatCannotBeReplacedKeepsItsContents) {
    files.putFile(backup(0), "0");
    files.failRemove(backup(0));

    rotateWith('a');

    EXPECT_EQ(marks(), "0-----------");
    EXPECT_EQ(files.file(kLive)->contents, "");
    EXPECT_EQ(handler->logFileNameCount(), 1);
    EXPECT_THAT(streams.logged(), IsEmpty());
}

TEST_F(Rotation, logThatCannotBeCutIsNoFailure) {
    files.putFile(kLive, full('a'));
    files.failWrite(kLive);

    pass();
    pass();

    EXPECT_EQ(marks(), "aa----------");
    EXPECT_EQ(handler->logFileNameCount(), 2);
    EXPECT_THAT(streams.logged(), IsEmpty());
}

TEST_F(Rotation, startsFromTheCountThatWasSet) {
    files.putFile(backup(1), "1");
    handler->setLogFileNameCount(2);

    rotateWith('a');

    EXPECT_EQ(marks(), "a-1---------");
    EXPECT_EQ(handler->logFileNameCount(), 3);
}

TEST_F(Rotation, worksOnTheSessionsFileManager) {
    fakes::FakeFileManager otherFiles;
    SessionDetails::getInstance().setDefaultOvraDirectoryManager(&otherFiles);
    otherFiles.putFile(kLive, full('a'));

    pass();

    EXPECT_THAT(otherFiles.journal,
                ElementsAre("copy " + kLive + " -> " + backup(0), "truncate " + kLive, "overwrite " + kLive));
    EXPECT_THAT(files.journal, IsEmpty());
}

TEST_F(Rotation, isDoneByOneInstanceAtATime) {
    rotateWith('a');

    EXPECT_THAT(files.heldDuringCopyTo.at(backup(0)), ElementsAre(kLogFolder));
    EXPECT_THAT(files.held, IsEmpty());
}

TEST_F(Rotation, isNotDoneAgainWhenAnotherInstanceHasJustDoneIt) {
    files.onHold = [this](const std::string&) {
        files.putFile(backup(0), "theirs");
        files.putFile(kLive, "");
    };

    rotateWith('a');

    EXPECT_EQ(files.file(backup(0))->contents, "theirs");
    EXPECT_EQ(handler->logFileNameCount(), 0);
    EXPECT_THAT(files.journal, IsEmpty());
}

TEST_F(Rotation, noLineFallsBetweenCopyAndTruncation) {
    /// Notes in the file system's journal when writers are held and released.
    class Holding final : public platform::StandardStreams {
      public:
        explicit Holding(std::vector<std::string>& notes) : journal(notes) {}
        std::vector<std::string>& journal;
        void writeError(std::string_view) override {}
        void writeOutput(std::string_view) override {}
        void reopenAll(const std::string&) override {}
        void withWritersHeld(const std::function<void()>& section) override {
            journal.emplace_back("hold");
            section();
            journal.emplace_back("release");
        }
    } holding(files.journal);
    platform::ports().standardStreams = &holding;

    rotateWith('a');

    EXPECT_THAT(files.journal, ElementsAre("hold", "copy " + kLive + " -> " + backup(0), "truncate " + kLive,
                                           "overwrite " + kLive, "release"));
}

} // namespace
} // namespace lumora
