#include "config/log_handler_test.h"
#include "config/session_details.h"

#include <gmock/gmock.h>

namespace lumora {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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
