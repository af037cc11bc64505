#include "config/utils.h"
#include "selfupdate/self_update_test.h"

namespace lumora {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kTarget = "/Users/casey/Downloads/Ovra Tessel Lumora.app";
constexpr const char* kDefaultTarget = "/Applications/Ovra Tessel Lumora.app";
const std::string kOperation = "+[Utils updateLumoraIfNeeded]";
const std::string kBegin = kOperation + " Updated Lumora Downloaded from server and Initiate to Copy ";
const std::string kEnd =
    kOperation +
    " : ************************** Ovra Lumora App terminated ******* \n"; // and the line's own end

class StagedUpdate : public SelfUpdateTest {
  protected:
    StagedUpdate() {
        session.setIsAppReplaceFlag(true);
        session.setLumoraAppPath(kTarget);
        session.setOvraLumoraNativeFolder(kStagingFolder);
        session.setLocalOvraLumoraAppVersion("1.0.0");
        putBundle(kStagedBundle, "new");
        putBundle(kTarget, "old");
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
        return kOperation + " App will be updated at its current location: " + path;
    }
};

TEST_F(StagedUpdate, logsTwoLinesAndDoesNothingWithoutTheFlag) {
    session.setIsAppReplaceFlag(false);

    Utils::updateLumoraIfNeeded();

    EXPECT_THAT(streams.logged(),
                ElementsAre(kOperation + " There is No Updated App downloaded from server.", kEnd));
    EXPECT_THAT(files.journal, IsEmpty());
    EXPECT_EQ(executableIn(kTarget), "old");
}

TEST_F(StagedUpdate, endsItsBannerWithTwoLineFeedsExactly) {
    session.setIsAppReplaceFlag(false);

    Utils::updateLumoraIfNeeded();

    EXPECT_TRUE(streams.raw().ends_with("Ovra Lumora App terminated ******* \n\n"));
}

TEST_F(StagedUpdate, replacesTheBundleWhereItRuns) {
    Utils::updateLumoraIfNeeded();

    EXPECT_EQ(executableIn(kTarget), "new");
    EXPECT_EQ(executableIn(kStagedBundle), "new"); // the staged one stays until the next is staged
    EXPECT_THAT(files.journal, ElementsAre("remove " + std::string(kTarget),
                                           "copy " + std::string(kStagedBundle) + " -> " + kTarget));
    EXPECT_THAT(tasks.runs, ElementsAre(std::vector<std::string>{"/bin/chmod", "-R", "777", kTarget}));
    EXPECT_THAT(streams.logged(),
                ElementsAre(kBegin, located(kTarget), kOperation + " Updated Lumora app Copied to " + kTarget,
                            kOperation + " Successfully set 777 permissions on " + kTarget, kEnd));
}

TEST_F(StagedUpdate, holdsTheStagingFolderAgainstOtherProcessesWhileItCopies) {
    Utils::updateLumoraIfNeeded();

    EXPECT_THAT(files.heldDuringCopyTo.at(kTarget), ElementsAre(kStagingFolder));
    EXPECT_THAT(files.held, IsEmpty());
}

TEST_F(StagedUpdate, replacesTheBundleInApplicationsWhenItsOwnPlaceIsUnknown) {
    putBundle(kDefaultTarget, "old");
    for (const SessionDetails::Text& unknown : {SessionDetails::Text(), SessionDetails::Text("")}) {
        forgetLines();
        session.setLumoraAppPath(unknown);

        Utils::updateLumoraIfNeeded();

        EXPECT_EQ(executableIn(kDefaultTarget), "new");
        EXPECT_THAT(streams.logged(),
                    ElementsAre(kBegin,
                                kOperation + " lumoraAppPath not set, defaulting to " + kDefaultTarget,
                                located(kDefaultTarget),
                                kOperation + " Updated Lumora app Copied to " + kDefaultTarget,
                                kOperation + " Successfully set 777 permissions on " + kDefaultTarget, kEnd));
    }
    EXPECT_EQ(executableIn(kTarget), "old");
}

TEST_F(StagedUpdate, leavesTheRunningBundleWhenTheStagedOneIsGone) {
    static_cast<void>(files.removeItem(kStagedBundle));
    files.journal.clear();

    Utils::updateLumoraIfNeeded();

    EXPECT_THAT(streams.logged(),
                ElementsAre(kBegin, located(kTarget),
                            kOperation + " There is No Updated Lumora App Present in " + kStagingFolder,
                            kEnd));
    EXPECT_EQ(executableIn(kTarget), "old");
    EXPECT_THAT(files.journal, IsEmpty());
}

TEST_F(StagedUpdate, findsNothingStagedWithoutAStagingFolder) {
    session.setOvraLumoraNativeFolder(std::nullopt);

    Utils::updateLumoraIfNeeded();

    EXPECT_EQ(streams.logged().at(2), kOperation + " There is No Updated Lumora App Present in (null)");
    EXPECT_EQ(executableIn(kTarget), "old");
}

TEST_F(StagedUpdate, keepsABundleThatCannotBeRemoved) {
    files.failRemove(kTarget);

    Utils::updateLumoraIfNeeded();

    EXPECT_THAT(streams.logged(),
                ElementsAre(kBegin, located(kTarget),
                            kOperation + " Failed to Remove Existing old Lumora app (1.0.0) in folder " +
                                kTarget +
                                " Error:  Error Domain=NSCocoaErrorDomain Code=513 \"The item could not be "
                                "removed.\"",
                            kEnd));
    EXPECT_EQ(executableIn(kTarget), "old");
    EXPECT_THAT(tasks.runs, IsEmpty());
}

TEST_F(StagedUpdate, putsNothingWhereTheRunningBundleHasBeenTakenAway) {
    static_cast<void>(files.removeItem(kTarget));

    Utils::updateLumoraIfNeeded();

    EXPECT_THAT(streams.logged().at(2),
                ::testing::StartsWith(kOperation + " Failed to Remove Existing old Lumora app (1.0.0)"));
    EXPECT_FALSE(files.fileExists(kTarget));
    EXPECT_THAT(tasks.runs, IsEmpty());
}

TEST_F(StagedUpdate, restoresNothingWhenTheCopyFails) {
    files.failCreateFile(kTarget);

    Utils::updateLumoraIfNeeded();

    EXPECT_THAT(streams.logged(),
                ElementsAre(kBegin, located(kTarget),
                            kOperation + " Failed to copy Updated Lumora app to folder " + kTarget, kEnd));
    EXPECT_FALSE(files.folderExists(kTarget));
    EXPECT_THAT(tasks.runs, IsEmpty());
}

TEST_F(StagedUpdate, logsPermissionsThatCouldNotBeSet) {
    tasks.onRun = [](const auto&, platform::TaskOutput) { return platform::TaskResult{1, ""}; };

    Utils::updateLumoraIfNeeded();

    EXPECT_EQ(streams.logged().at(3), kOperation + " Failed to set 777 permissions on " +
                                          std::string(kTarget) + ", termination status: 1");
    EXPECT_EQ(streams.logged().at(4), kEnd);
}

TEST_F(StagedUpdate, logsAPermissionToolThatNeverStartedLikeAFailedOne) {
    tasks.onRun = [](const auto&, platform::TaskOutput) -> platform::Result<platform::TaskResult> {
        return platform::Error{"NSPOSIXErrorDomain", 2, "No such file or directory", {}};
    };

    EXPECT_NO_THROW(Utils::updateLumoraIfNeeded());

    EXPECT_EQ(streams.logged().at(3), kOperation + " Failed to set 777 permissions on " +
                                          std::string(kTarget) + ", termination status: 127");
    EXPECT_EQ(streams.logged().at(4), kEnd);
}

} // namespace
} // namespace lumora
