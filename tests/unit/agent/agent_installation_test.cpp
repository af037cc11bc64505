#include "agent/agent_test.h"
#include "fakes/failing_streams.h"

namespace lumora {
namespace {

using fakes::exceptionLine;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

using ToolRun = std::vector<std::string>;
using Post = fakes::FakeDistributedNotifications::Post;

const std::string kCopyAndLaunch = "-[OvraDmgDownloader copyAppFileAndLaunch]";
const std::string kDetachLine =
    "-[OvraDmgDownloader unMountingOvraMacDmg] : Dmg unmount task termination status : ";
const std::string kLaunchedLine = kCopyAndLaunch + " : App Path : " + kAgent + " ovra app file launched!";
const ToolRun kMountRun{"/usr/bin/hdiutil", "mount", kAgentImage};
const ToolRun kDetachRun{"/usr/bin/hdiutil", "detach", "/Volumes/Ovra"};
const Post kNotStarted{"SendSessionStatusToTesselLumora", "status", 0};

class AgentInstallation : public AgentTest {
  protected:
    AgentInstallation() { files.putFile(kAgentImage, "image"); }

    std::shared_ptr<OvraDmgDownloader> downloader = std::make_shared<OvraDmgDownloader>();
};

TEST_F(AgentInstallation, copiesLaunchesCopiesTheToolsAndCleansUp) {
    mountWorks();

    downloader->mountingOvraMacDmg();

    EXPECT_THAT(streams.logged(),
                ElementsAre("-[OvraDmgDownloader mountingOvraMacDmg] : dmg mount task termination status : 0",
                            kCopyAndLaunch + " : Ovra.app file copied", kLaunchLine, kLaunchedLine,
                            kCopyAndLaunch + " : OvraCrashDetector file copied",
                            kCopyAndLaunch + " : TesselUserHandler file copied",
                            kCopyAndLaunch + " :OTPreLogin file copied",
                            kCopyAndLaunch + " :OvraPingAgent file copied",
                            kCopyAndLaunch + " :RemoteScriptLauncher file copied",
                            kCopyAndLaunch + " :tools_mac file copied", kDetachLine + "0",
                            kDetachLine + "1"));
    EXPECT_THAT(
        files.journal,
        ElementsAre("mkdir " + kAgentFolder, "copy /Volumes/Ovra/Ovra.app -> " + kAgent,
                    "copy /Volumes/Ovra/OvraCrashDetector -> " + kAgentFolder + "OvraCrashDetector",
                    "copy /Volumes/Ovra/TesselUserHandler -> " + kAgentFolder + "TesselUserHandler",
                    "copy /Volumes/Ovra/OTPreLogin -> " + kAgentFolder + "OTPreLogin",
                    "copy /Volumes/Ovra/OvraPingAgent -> " + kAgentFolder + "OvraPingAgent",
                    "copy /Volumes/Ovra/RemoteScriptLauncher -> " + kAgentFolder + "RemoteScriptLauncher",
                    "copy /Volumes/Ovra/tools_mac -> " + kAgentFolder + "tools_mac", "remove " + kAgentImage,
                    "remove /Volumes/Ovra"));
    EXPECT_THAT(tasks.runs, ElementsAre(kMountRun, kDetachRun, kDetachRun));
    EXPECT_EQ(installedAgent(), "new agent");
    EXPECT_NE(files.file(kAgentFolder + "tools_mac/tool"), nullptr);
    EXPECT_THAT(distributed.posts, IsEmpty());
}

TEST_F(AgentInstallation, launchesTheAgentBeforeItsToolsAreThere) {
    mountWorks();
    bool agentThere = false;
    bool toolThere = true;
    workspace.onLaunch = [&](const std::string&) {
        agentThere = files.folderExists(kAgent);
        toolThere = files.file(kAgentFolder + "OvraCrashDetector") != nullptr;
    };

    downloader->mountingOvraMacDmg();

    EXPECT_TRUE(agentThere);
    EXPECT_FALSE(toolThere);
}

TEST_F(AgentInstallation, leavesEverythingAsItIsWhenAnAgentStillStands) {
    putAgent("old agent");
    mountWorks();

    downloader->mountingOvraMacDmg();

    EXPECT_EQ(installedAgent(), "old agent");
    EXPECT_THAT(workspace.launches, IsEmpty());
    EXPECT_THAT(tasks.runs, ElementsAre(kMountRun)); // the volume stays mounted
    EXPECT_NE(files.file(kAgentImage), nullptr);
    EXPECT_THAT(
        streams.logged(),
        ElementsAre("-[OvraDmgDownloader mountingOvraMacDmg] : dmg mount task termination status : 0"));
}

TEST_F(AgentInstallation, launchesAMissingBundleAfterAFailedMount) {
    tasks.onRun = [](const auto&, platform::TaskOutput) { return platform::TaskResult{16, ""}; };
    workspace.launchError = platform::Error{"NSCocoaErrorDomain", 4, "No such application.", {}};

    downloader->mountingOvraMacDmg();

    EXPECT_THAT(
        streams.logged(),
        ElementsAre("-[OvraDmgDownloader mountingOvraMacDmg] : dmg mount task termination status : 16",
                    kLaunchLine, kLaunchedLine, kDetachLine + "16", kDetachLine + "16"));
    EXPECT_EQ(workspace.launches.at(0).path, kAgent);
    EXPECT_EQ(files.file(kAgentImage), nullptr);
    EXPECT_THAT(distributed.posts, IsEmpty());
}

TEST_F(AgentInstallation, keepsToolsThatAreThereAlready) {
    mountWorks();
    files.putFile(kAgentFolder + "OTPreLogin", "old pre-login");
    files.putFolder(kAgentFolder + "tools_mac");

    downloader->mountingOvraMacDmg();

    EXPECT_EQ(files.file(kAgentFolder + "OTPreLogin")->contents, "old pre-login");
    const auto lines = streams.logged();
    EXPECT_THAT(lines, Not(Contains(kCopyAndLaunch + " :OTPreLogin file copied")));
    EXPECT_THAT(lines, Not(Contains(kCopyAndLaunch + " :tools_mac file copied")));
    EXPECT_THAT(lines,
                Contains(kCopyAndLaunch + " :OvraPingAgent file copied")); // a failed copy stops nothing
}

TEST_F(AgentInstallation, removesTheImageWithoutTheCrashDetectorToo) {
    mountWorks();
    files.failCreateFile(kAgentFolder + "OvraCrashDetector");

    downloader->mountingOvraMacDmg();

    EXPECT_EQ(files.file(kAgentImage), nullptr);
}

TEST_F(AgentInstallation, toleratesAnImageThatIsGoneOrCannotBeRemoved) {
    mountWorks();
    files.failRemove(kAgentImage);

    downloader->mountingOvraMacDmg();

    EXPECT_NE(files.file(kAgentImage), nullptr);
    EXPECT_EQ(streams.logged().back(), kDetachLine + "1");
}

TEST_F(AgentInstallation, goesOnWhenTheAgentFolderCannotBeMade) {
    mountWorks();
    files.failCreateFolder(kAgentFolder);

    downloader->mountingOvraMacDmg();

    EXPECT_EQ(workspace.launches.size(), 1U);
}

TEST_F(AgentInstallation, tellsOtherProcessesWhenTheMountToolNeverStarted) {
    tasks.onRun = [](const auto&, platform::TaskOutput) { return neverStarted(); };

    downloader->mountingOvraMacDmg();

    EXPECT_THAT(streams.logged(), ElementsAre(exceptionLine("-[OvraDmgDownloader mountingOvraMacDmg]",
                                                            "No such file or directory")));
    EXPECT_THAT(distributed.posts, ElementsAre(kNotStarted));
    EXPECT_THAT(workspace.launches, IsEmpty());
}

TEST_F(AgentInstallation, tellsOtherProcessesWhenTheCopyingBreaksOffAndStillDetaches) {
    mountWorks();
    fakes::FailingStreams failing(streams, 2); // the line about the copied agent
    platform::ports().standardStreams = &failing;

    downloader->mountingOvraMacDmg();

    EXPECT_THAT(streams.logged(),
                ElementsAre("-[OvraDmgDownloader mountingOvraMacDmg] : dmg mount task termination status : 0",
                            exceptionLine(kCopyAndLaunch, "write failed"), kDetachLine + "0"));
    EXPECT_THAT(distributed.posts, ElementsAre(kNotStarted));
    EXPECT_THAT(workspace.launches, IsEmpty());
}

TEST_F(AgentInstallation, copiesTheToolsEvenWhenTheLaunchRaises) {
    mountWorks();
    workspace.throwOnLaunch = true;

    downloader->mountingOvraMacDmg();

    EXPECT_THAT(streams.logged(), Contains(kLaunchedLine)); // the launch claims success even then
    EXPECT_NE(files.file(kAgentFolder + "OvraPingAgent"), nullptr);
    EXPECT_THAT(distributed.posts, ElementsAre(kNotStarted));
}

TEST_F(AgentInstallation, onlyLogsADetachToolThatNeverStarted) {
    tasks.onRun = [](const auto&, platform::TaskOutput) { return neverStarted(); };

    downloader->unMountingOvraMacDmg();

    EXPECT_THAT(tasks.runs, ElementsAre(kDetachRun));
    EXPECT_THAT(streams.logged(), ElementsAre(exceptionLine("-[OvraDmgDownloader unMountingOvraMacDmg]",
                                                            "No such file or directory")));
    EXPECT_THAT(distributed.posts, IsEmpty());
}

TEST_F(AgentInstallation, capturesNoneOfTheToolsOutput) {
    std::vector<platform::TaskOutput> outputs;
    tasks.onRun = [&outputs](const auto&, platform::TaskOutput output) {
        outputs.push_back(output);
        return platform::TaskResult{};
    };

    downloader->mountingOvraMacDmg();

    EXPECT_THAT(outputs, Each(platform::TaskOutput::discard));
}

} // namespace
} // namespace lumora
