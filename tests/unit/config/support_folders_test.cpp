#include "config/log_handler.h"
#include "config/utils.h"
#include "fakes/core_test.h"
#include "fakes/failing_streams.h"
#include "fakes/log_lines.h"

#include <gmock/gmock.h>

namespace lumora {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kVarlo = "/Users/casey/Library/Application Support/OvraVarloNative/";
constexpr const char* kLumora = "/Users/casey/Library/Application Support/OvraLumoraNativeFolder/";

/// The two folders differ in path and words only.
struct Folder {
    void (*create)();
    std::string path;
    std::string operation;
    std::string name;
};

class SupportFolder : public CoreTest, public ::testing::WithParamInterface<Folder> {};

TEST_P(SupportFolder, isCreatedWithItsParents) {
    GetParam().create();

    EXPECT_TRUE(files.folderExists(GetParam().path));
    EXPECT_THAT(files.journal, ElementsAre("mkdir " + GetParam().path));
    EXPECT_THAT(streams.logged(),
                ElementsAre(GetParam().operation + " " + GetParam().name + " Folder Created..."));
}

TEST_P(SupportFolder, isLeftAloneWhenPresent) {
    files.putFolder(GetParam().path);

    GetParam().create();

    EXPECT_THAT(files.journal, IsEmpty());
    EXPECT_THAT(streams.logged(),
                ElementsAre(GetParam().operation + " " + GetParam().name + " folder Already Present"));
}

TEST_P(SupportFolder, fileInItsPlaceCountsAsPresent) {
    std::string path = GetParam().path;
    path.pop_back();
    files.putFile(path, "a file");

    GetParam().create();

    EXPECT_THAT(files.journal, IsEmpty());
    EXPECT_EQ(files.file(path)->contents, "a file");
    EXPECT_THAT(streams.logged(),
                ElementsAre(GetParam().operation + " " + GetParam().name + " folder Already Present"));
}

TEST_P(SupportFolder, failureIsLoggedWithoutItsText) {
    files.failCreateFolder(GetParam().path);

    GetParam().create();

    EXPECT_THAT(streams.logged(),
                ElementsAre(GetParam().operation + " Failed to Create " + GetParam().name + " Folder..."));
}

TEST_P(SupportFolder, exceptionIsLoggedUnderItsName) {
    fakes::FailingStreams failing(streams, 1);
    platform::ports().standardStreams = &failing;

    GetParam().create();

    EXPECT_THAT(streams.logged(), ElementsAre(fakes::exceptionLine(GetParam().operation, "write failed")));
}

INSTANTIATE_TEST_SUITE_P(
    Both, SupportFolder,
    ::testing::Values(Folder{&Utils::createOvraVarloNativeFolder, kVarlo,
                             "+[Utils createOvraVarloNativeFolder]", "Ovra Varlo Native"},
                      Folder{&Utils::createOvraLumoraNativeFolder, kLumora,
                             "+[Utils createOvraLumoraNativeFolder]", "Ovra Lumora Native"}),
    [](const auto& param) { return param.index == 0 ? "Varlo" : "Lumora"; });

class DirectoriesAndLog : public CoreTest {
  protected:
    const std::string rule =
        "+[Utils createLumoraDirectoriesWithLogHandler:] : " + std::string(57, '*') + " \n";
    const std::string started = "+[Utils createLumoraDirectoriesWithLogHandler:] : ************* Ovra Lumora "
                                "App Started ************ \n";

    /// The banner's messages as they arrive: their line feed is the line's end.
    static std::string ended(std::string message) {
        message.pop_back();
        return message;
    }
};

TEST_F(DirectoriesAndLog, beginTheLogThenTheFolders) {
    Utils::createLumoraDirectoriesWithLogHandler(nullptr);

    EXPECT_THAT(streams.logged(),
                ElementsAre("-[LogHandler createOvraLumoraLogFolder] Ovra Lumora Log Folder Created...",
                            ended(rule), ended(started), ended(rule),
                            "+[Utils createOvraVarloNativeFolder] Ovra Varlo Native Folder Created...",
                            "+[Utils createOvraLumoraNativeFolder] Ovra Lumora Native Folder Created..."));
    EXPECT_THAT(files.journal, ElementsAre("mkdir /Users/casey/Library/Logs//OvraTessel/OvraLumora/",
                                           std::string("mkdir ") + kVarlo, std::string("mkdir ") + kLumora));
}

TEST_F(DirectoriesAndLog, bannerLinesEndInABlankAndOneLineFeed) {
    Utils::createLumoraDirectoriesWithLogHandler(nullptr);

    const std::string prefix = "2026-11-21 09:41:07.123 Ovra Tessel Lumora[4242:7] ";
    EXPECT_THAT(streams.raw(),
                ::testing::HasSubstr(prefix + rule + prefix + started + prefix + rule + prefix));
}

TEST_F(DirectoriesAndLog, secondLaunchFindsBothFolders) {
    Utils::createLumoraDirectoriesWithLogHandler(nullptr);
    forgetLines();

    Utils::createLumoraDirectoriesWithLogHandler(nullptr);

    EXPECT_THAT(
        streams.logged(),
        ElementsAre("-[LogHandler createOvraLumoraLogFolder] Ovra Lumora Log Folder Created...", ended(rule),
                    ended(started), ended(rule),
                    "+[Utils createOvraVarloNativeFolder] Ovra Varlo Native folder Already Present",
                    "+[Utils createOvraLumoraNativeFolder] Ovra Lumora Native folder Already Present"));
}

TEST_F(DirectoriesAndLog, redirectionStandsBeforeTheBanner) {
    std::vector<std::string> before;
    streams.onReopen = [this, &before](const std::string&) { before = streams.logged(); };

    Utils::createLumoraDirectoriesWithLogHandler(nullptr);

    EXPECT_THAT(before,
                ElementsAre("-[LogHandler createOvraLumoraLogFolder] Ovra Lumora Log Folder Created..."));
}

TEST_F(DirectoriesAndLog, handlerIsANewOneThatItsTimerKeepsAlive) {
    const auto given = std::make_shared<LogHandler>();

    Utils::createLumoraDirectoriesWithLogHandler(given.get());
    loop.fireTimers();

    EXPECT_EQ(given->ovraLumoraLogFolder(), "");
    EXPECT_EQ(given->loggingTimer(), nullptr);
    EXPECT_EQ(loop.validTimers(), 1U);
    EXPECT_EQ(streams.reopened.size(), 2U);
}

TEST_F(DirectoriesAndLog, failedLogFolderStopsNothing) {
    files.failCreateFolder("/Users/casey/Library/Logs/OvraTessel/OvraLumora");

    Utils::createLumoraDirectoriesWithLogHandler(nullptr);

    EXPECT_EQ(loop.validTimers(), 1U);
    EXPECT_TRUE(files.folderExists(kVarlo));
    EXPECT_TRUE(files.folderExists(kLumora));
}

TEST_F(DirectoriesAndLog, exceptionIsLoggedUnderItsName) {
    fakes::FailingStreams failing(streams, 2); // the banner's first line
    platform::ports().standardStreams = &failing;

    Utils::createLumoraDirectoriesWithLogHandler(nullptr);

    EXPECT_EQ(streams.logged().back(),
              fakes::exceptionLine("+[Utils createLumoraDirectoriesWithLogHandler:]", "write failed"));
    EXPECT_FALSE(files.folderExists(kVarlo));
}

} // namespace
} // namespace lumora
