#include "config/utils.h"
#include "selfupdate/self_update_test.h"

namespace lumora {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kRunningBundle = "/Users/casey/Downloads/Ovra Tessel Lumora.app";
constexpr const char* kDefaultTarget = "/Applications/Ovra Tessel Lumora.app";
const std::string kSwapOperation = "+[Utils updateLumoraIfNeeded]";
const std::string kBegin = kSwapOperation + " Updated Lumora Downloaded from server and Initiate to Copy ";
const std::string kEnd =
    kSwapOperation +
    " : ************************** Ovra Lumora App terminated ******* \n"; // and the line's own end

class StagedUpdate : public SelfUpdateTest {
  protected:
    StagedUpdate() {
        session.setIsAppReplaceFlag(true);
        session.setLumoraAppPath(kRunningBundle);
        session.setOvraLumoraNativeFolder(kStagingFolder);
        session.setLocalOvraLumoraAppVersion("1.0.0");
        putBundle(kStagedBundle, "new");
        putBundle(kRunningBundle, "old");
    }

    void putBundle(const std::string& path, const std::string& executable) {
        files.putFolder(path);
        files.putFile(path + "/Contents/MacOS/Ovra Tessel Lumora", executable);
    }

    std::string executableIn(const std::string& path) {
        const auto* file = files.file(path + "/Contents/MacOS/Ovra Tessel Lumora");
        return file != nullptr ? file->contents : "";
    }

    static std::string located(const std::string& path) {
        return kSwapOperation + " App will be updated at its current location: " + path;
    }
};

TEST_F(StagedUpdate, logsTwoLinesAndDoesNothingWithoutTheFlag) {
    session.setIsAppReplaceFlag(false);

    Utils::updateLumoraIfNeeded();

    EXPECT_THAT(streams.logged(),
                ElementsAre(kSwapOperation + " There is No Updated App downloaded from server.", kEnd));
    EXPECT_THAT(files.journal, IsEmpty());
    EXPECT_EQ(executableIn(kRunningBundle), "old");
}

TEST_F(StagedUpdate, endsItsBannerWithTwoLineFeedsExactly) {
    session.setIsAppReplaceFlag(false);

    Utils::updateLumoraIfNeeded();

    EXPECT_TRUE(streams.raw().ends_with("Ovra Lumora App terminated ******* \n\n"));
}

TEST_F(StagedUpdate, replacesTheBundleWhereItRuns) {
    Utils::updateLumoraIfNeeded();

    EXPECT_EQ(executableIn(kRunningBundle), "new");
    EXPECT_EQ(executableIn(kStagedBundle), "new"); // the staged one stays until the next is staged
    EXPECT_THAT(files.journal, ElementsAre("remove " + std::string(kRunningBundle),
                                           "copy " + std::string(kStagedBundle) + " -> " + kRunningBundle));
    EXPECT_THAT(tasks.runs, ElementsAre(std::vector<std::string>{"/bin/chmod", "-R", "777", kRunningBundle}));
    EXPECT_THAT(streams.logged(),
                ElementsAre(kBegin, located(kRunningBundle),
                            kSwapOperation + " Updated Lumora app Copied to " + kRunningBundle,
                            kSwapOperation + " Successfully set 777 permissions on " + kRunningBundle, kEnd));
}

TEST_F(StagedUpdate, holdsTheStagingFolderAgainstOtherProcessesWhileItCopies) {
    Utils::updateLumoraIfNeeded();

    EXPECT_THAT(files.heldDuringCopyTo.at(kRunningBundle), ElementsAre(kStagingFolder));
    EXPECT_THAT(files.held, IsEmpty());
}

TEST_F(StagedUpdate, replacesTheBundleInApplicationsWhenItsOwnPlaceIsUnknown) {
    putBundle(kDefaultTarget, "old");
    for (const SessionDetails::Text& unknown : {SessionDetails::Text(), SessionDetails::Text("")}) {
        forgetLines();
        session.setLumoraAppPath(unknown);

        Utils::updateLumoraIfNeeded();

        EXPECT_EQ(executableIn(kDefaultTarget), "new");
        EXPECT_THAT(
            streams.logged(),
            ElementsAre(kBegin, kSwapOperation + " lumoraAppPath not set, defaulting to " + kDefaultTarget,
                        located(kDefaultTarget),
                        kSwapOperation + " Updated Lumora app Copied to " + kDefaultTarget,
                        kSwapOperation + " Successfully set 777 permissions on " + kDefaultTarget, kEnd));
    }
    EXPECT_EQ(executableIn(kRunningBundle), "old");
}

TEST_F(StagedUpdate, leavesTheRunningBundleWhenTheStagedOneIsGone) {
    static_cast<void>(files.removeItem(kStagedBundle));
    files.journal.clear();

    Utils::updateLumoraIfNeeded();

    EXPECT_THAT(streams.logged(),
                ElementsAre(kBegin, located(kRunningBundle),
                            kSwapOperation + " There is No Updated Lumora App Present in " + kStagingFolder,
                            kEnd));
    EXPECT_EQ(executableIn(kRunningBundle), "old");
    EXPECT_THAT(files.journal, IsEmpty());
}

TEST_F(StagedUpdate, findsNothingStagedWithoutAStagingFolder) {
    session.setOvraLumoraNativeFolder(std::nullopt);

    Utils::updateLumoraIfNeeded();

    EXPECT_EQ(streams.logged().at(2), kSwapOperation + " There is No Updated Lumora App Present in (null)");
    EXPECT_EQ(executableIn(kRunningBundle), "old");
}

TEST_F(StagedUpdate, keepsABundleThatCannotBeRemoved) {
    files.failRemove(kRunningBundle);

    Utils::updateLumoraIfNeeded();

    EXPECT_THAT(streams.logged(),
                ElementsAre(kBegin, located(kRunningBundle),
                            kSwapOperation + " Failed to Remove Existing old Lumora app (1.0.0) in folder " +
                                kRunningBundle +
                                " Error:  Error Domain=NSCocoaErrorDomain Code=513 \"The item could not be "
                                "removed.\"",
                            kEnd));
    EXPECT_EQ(executableIn(kRunningBundle), "old");
    EXPECT_THAT(tasks.runs, IsEmpty());
}

TEST_F(StagedUpdate, putsNothingWhereTheRunningBundleHasBeenTakenAway) {
    static_cast<void>(files.removeItem(kRunningBundle));

    Utils::updateLumoraIfNeeded();

    EXPECT_THAT(streams.logged().at(2),
                ::testing::StartsWith(kSwapOperation + " Failed to Remove Existing old Lumora app (1.0.0)"));
    EXPECT_FALSE(files.fileExists(kRunningBundle));
    EXPECT_THAT(tasks.runs, IsEmpty());
}

TEST_F(StagedUpdate, restoresNothingWhenTheCopyFails) {
    files.failCreateFile(kRunningBundle);

    Utils::updateLumoraIfNeeded();

    EXPECT_THAT(streams.logged(),
                ElementsAre(kBegin, located(kRunningBundle),
                            kSwapOperation + " Failed to copy Updated Lumora app to folder " + kRunningBundle,
                            kEnd));
    EXPECT_FALSE(files.folderExists(kRunningBundle));
    EXPECT_THAT(tasks.runs, IsEmpty());
}

TEST_F(StagedUpdate, logsPermissionsThatCouldNotBeSet) {
    tasks.onRun = [](const auto&, platform::TaskOutput) { return platform::TaskResult{1, ""}; };

    Utils::updateLumoraIfNeeded();

    EXPECT_EQ(streams.logged().at(3), kSwapOperation + " Failed to set 777 permissions on " +
                                          std::string(kRunningBundle) + ", termination status: 1");
    EXPECT_EQ(streams.logged().at(4), kEnd);
}

TEST_F(StagedUpdate, logsAPermissionToolThatNeverStartedLikeAFailedOne) {
    tasks.onRun = [](const auto&, platform::TaskOutput) -> platform::Result<platform::TaskResult> {
        return platform::Error{"NSPOSIXErrorDomain", 2, "No such file or directory", {}};
    };

    EXPECT_NO_THROW(Utils::updateLumoraIfNeeded());

    EXPECT_EQ(streams.logged().at(3), kSwapOperation + " Failed to set 777 permissions on " +
                                          std::string(kRunningBundle) + ", termination status: 127");
    EXPECT_EQ(streams.logged().at(4), kEnd);
}

} // namespace
} // namespace lumora
