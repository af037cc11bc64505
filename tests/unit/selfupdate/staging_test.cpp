#include "fakes/failing_streams.h"
#include "selfupdate/self_update_test.h"

namespace lumora {
namespace {

using fakes::exceptionLine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using ToolRun = std::vector<std::string>;

class Staging : public SelfUpdateTest {
  protected:
    Staging() { files.putFile(kUpdateImage, "image"); }

    /// The image tool prints a text for "mount" and ends everything with a status.
    void toolSays(const std::string& output, int status = 0) {
        tasks.onRun = [output, status](const auto& run, platform::TaskOutput) {
            return platform::TaskResult{status, run.at(1) == "mount" ? output : ""};
        };
    }

    /// What the chain detaches after the tool printed this.
    std::string detachedAfter(const std::string& output) {
        toolSays(output);
        tasks.runs.clear();
        updater->mountingOvraLumoraDmg();
        return tasks.runs.size() == 2 ? tasks.runs[1].at(2) : "nothing";
    }
};

TEST_F(Staging, mountsStagesDetachesAndDeletesTheImage) {
    mountWorks();

    updater->mountingOvraLumoraDmg();

    EXPECT_THAT(tasks.runs, ElementsAre(ToolRun{"/usr/bin/hdiutil", "mount", kUpdateImage},
                                        ToolRun{"/usr/bin/hdiutil", "detach", "/Volumes/Lumora Plugin"}));
    EXPECT_EQ(staged(), "new version");
    EXPECT_TRUE(session.isAppReplaceFlag());
    EXPECT_THAT(files.journal, ElementsAre("copy " + std::string(kBundleOnVolume) + " -> " + kStagedBundle,
                                           "remove " + std::string(kUpdateImage)));
    EXPECT_THAT(
        streams.logged(),
        ElementsAre("-[OvraLumoraUpdater copyAppFile] : Ovra Tessel Lumora.app file copied to  "
                    "OvraLumoraNative folder",
                    "-[OvraLumoraUpdater unMountingOvraLumoraDmg] : Dmg unmount task termination status "
                    ": 0"));
}

TEST_F(Staging, capturesWhatTheToolPrintsOnMountOnly) {
    std::vector<platform::TaskOutput> outputs;
    tasks.onRun = [&outputs](const auto&, platform::TaskOutput output) {
        outputs.push_back(output);
        return platform::TaskResult{0, "/Volumes/Lumora Plugin"};
    };

    updater->mountingOvraLumoraDmg();

    EXPECT_THAT(outputs, ElementsAre(platform::TaskOutput::capture, platform::TaskOutput::discard));
}

TEST_F(Staging, detachesBeforeItDeletesTheImage) {
    bool imageThere = false;
    tasks.onRun = [&](const auto& run, platform::TaskOutput) {
        imageThere = run.at(1) == "detach" && files.fileExists(kUpdateImage);
        return platform::TaskResult{0, "/Volumes/Lumora Plugin"};
    };

    updater->mountingOvraLumoraDmg();

    EXPECT_TRUE(imageThere);
    EXPECT_FALSE(files.fileExists(kUpdateImage));
}

TEST_F(Staging, replacesAnEarlierStagedBundleWhole) {
    mountWorks();
    files.putFolder(kStagedBundle);
    files.putFile(std::string(kStagedBundle) + "/Contents/left over", "old");

    updater->mountingOvraLumoraDmg();

    EXPECT_EQ(staged(), "new version");
    EXPECT_EQ(files.file(std::string(kStagedBundle) + "/Contents/left over"), nullptr);
    EXPECT_EQ(streams.logged().at(0),
              "-[OvraLumoraUpdater copyAppFile] : Existing Updated Ovra Lumora Removed in folder " +
                  std::string(kStagingFolder));
    EXPECT_TRUE(session.isAppReplaceFlag());
}

TEST_F(Staging, keepsTheFlagFalseWhenTheEarlierBundleCannotBeRemoved) {
    mountWorks();
    files.putFolder(kStagedBundle);
    files.failRemove(kStagedBundle);

    updater->mountingOvraLumoraDmg();

    EXPECT_THAT(
        streams.logged(),
        ElementsAre("-[OvraLumoraUpdater copyAppFile] : No Existing Updated Ovra Lumora Present in folder " +
                        std::string(kStagingFolder),
                    "-[OvraLumoraUpdater unMountingOvraLumoraDmg] : Dmg unmount task termination status "
                    ": 0"));
    EXPECT_FALSE(session.isAppReplaceFlag());
    EXPECT_EQ(files.file(kUpdateImage), nullptr);
}

TEST_F(Staging, staysSilentAboutACopyThatFails) {
    toolSays("/Volumes/Another Name\n");

    updater->mountingOvraLumoraDmg();

    EXPECT_FALSE(session.isAppReplaceFlag());
    EXPECT_EQ(tasks.runs.at(1), (ToolRun{"/usr/bin/hdiutil", "detach", "/Volumes/Another Name"}));
    EXPECT_THAT(streams.logged(),
                ElementsAre("-[OvraLumoraUpdater unMountingOvraLumoraDmg] : Dmg unmount task "
                            "termination status : 0"));
    EXPECT_EQ(files.file(kUpdateImage), nullptr);
}

TEST_F(Staging, keepsAFlagThatAnEarlierChainRaised) {
    session.setIsAppReplaceFlag(true);
    toolSays("");

    updater->mountingOvraLumoraDmg();

    EXPECT_TRUE(session.isAppReplaceFlag());
}

TEST_F(Staging, detachesWhateverAFailedMountPrinted) {
    toolSays("hdiutil: mount failed - image not recognized\n", 1);

    updater->mountingOvraLumoraDmg();

    EXPECT_EQ(tasks.runs.at(1),
              (ToolRun{"/usr/bin/hdiutil", "detach", "hdiutil: mount failed - image not recognized"}));
    EXPECT_THAT(streams.logged(),
                ElementsAre("-[OvraLumoraUpdater unMountingOvraLumoraDmg] : Dmg unmount task "
                            "termination status : 1"));
}

TEST_F(Staging, takesTheLastTabSeparatedFieldAsTheMountPoint) {
    EXPECT_EQ(detachedAfter("a\tb\t/Volumes/X"), "/Volumes/X");
    EXPECT_EQ(detachedAfter(" \r\n\ta\t/Volumes/X Y \t\r\n "), "/Volumes/X Y");
    EXPECT_EQ(detachedAfter("/Volumes/Ünï"), "/Volumes/Ünï");
    EXPECT_EQ(detachedAfter("one\nline\ttwo\nlines"), "two\nlines");
    EXPECT_EQ(detachedAfter(""), "");
    EXPECT_EQ(detachedAfter(" \t\n"), "");
}

TEST_F(Staging, knowsNoMountPointWhenTheOutputIsNoText) {
    EXPECT_EQ(detachedAfter("a\t/Volumes/\xff"), "nothing");

    EXPECT_EQ(streams.logged().back(),
              "-[OvraLumoraUpdater unMountingOvraLumoraDmg] : No Lumora DMG is mounted to unmount");
}

TEST_F(Staging, logsAMountToolThatNeverStartedInItsOwnShortForm) {
    tasks.onRun = [](const auto&, platform::TaskOutput) -> platform::Result<platform::TaskResult> {
        return platform::Error{"NSPOSIXErrorDomain", 2, "No such file or directory", {}};
    };

    updater->mountingOvraLumoraDmg();

    EXPECT_THAT(streams.logged(),
                ElementsAre("-[OvraLumoraUpdater mountingOvraLumoraDmg] : Exception: No such file "
                            "or directory"));
    EXPECT_NE(files.file(kUpdateImage), nullptr);
}

TEST_F(Staging, logsADetachToolThatNeverStartedAndStillDeletesTheImage) {
    tasks.onRun = [](const auto& run, platform::TaskOutput) -> platform::Result<platform::TaskResult> {
        if (run.at(1) == "mount")
            return platform::TaskResult{0, "/Volumes/Lumora Plugin"};
        return platform::Error{"NSPOSIXErrorDomain", 2, "No such file or directory", {}};
    };

    updater->mountingOvraLumoraDmg();

    EXPECT_THAT(streams.logged(), ElementsAre(exceptionLine("-[OvraLumoraUpdater unMountingOvraLumoraDmg]",
                                                            "No such file or directory")));
    EXPECT_EQ(files.file(kUpdateImage), nullptr);
}

TEST_F(Staging, stopsTheCopyingWhereSomethingRaises) {
    putVolume("new version");
    fakes::FailingStreams failing(streams, 1);
    platform::ports().standardStreams = &failing;

    updater->copyAppFile();

    EXPECT_THAT(streams.logged(),
                ElementsAre(exceptionLine("-[OvraLumoraUpdater copyAppFile]", "write failed")));
    EXPECT_TRUE(session.isAppReplaceFlag()); // raised before its line is written
    EXPECT_NE(files.file(kUpdateImage), nullptr);
}

TEST_F(Staging, saysThatNothingIsMounted) {
    updater->unMountingOvraLumoraDmg();

    EXPECT_THAT(tasks.runs, IsEmpty());
    EXPECT_THAT(streams.logged(),
                ElementsAre("-[OvraLumoraUpdater unMountingOvraLumoraDmg] : No Lumora DMG is "
                            "mounted to unmount"));
}

TEST_F(Staging, detachesOnceOnly) {
    mountWorks();
    updater->mountingOvraLumoraDmg();
    tasks.runs.clear();

    updater->unMountingOvraLumoraDmg();

    EXPECT_THAT(tasks.runs, IsEmpty());
}

TEST_F(Staging, toleratesAnImageThatIsGoneOrCannotBeDeleted) {
    mountWorks();
    files.failRemove(kUpdateImage);
    updater->mountingOvraLumoraDmg();
    EXPECT_NE(files.file(kUpdateImage), nullptr);
    EXPECT_EQ(streams.logged().size(), 2U);
}

TEST_F(Staging, holdsTheStagingFolderAgainstOtherProcessesWhileItReplacesTheBundle) {
    mountWorks();

    updater->mountingOvraLumoraDmg();

    EXPECT_THAT(files.heldDuringCopyTo.at(kStagedBundle), ElementsAre(kStagingFolder));
    EXPECT_THAT(files.held, IsEmpty());
}

TEST_F(Staging, letsTwoChainsReplaceEachOthersBundle) {
    mountWorks();
    const auto other = OvraLumoraUpdater::getInstance();
    updater->mountingOvraLumoraDmg();
    files.putFile(kUpdateImage, "image");
    forgetLines();

    other->mountingOvraLumoraDmg();

    EXPECT_EQ(staged(), "new version");
    EXPECT_EQ(streams.logged().at(0),
              "-[OvraLumoraUpdater copyAppFile] : Existing Updated Ovra Lumora Removed in folder " +
                  std::string(kStagingFolder));
}

} // namespace
} // namespace lumora
