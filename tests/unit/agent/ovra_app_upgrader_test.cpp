#include "agent/agent_test.h"
#include "fakes/failing_streams.h"

#include <array>
#include <thread>

namespace lumora {
namespace {

using fakes::exceptionLine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kVersionCheckPath = "/Users/casey/Library/Application Support/OvraVarloNative//Ovra.app";
const std::string kOldAgentPath = "/Users/casey/Library/Application Support/OvraVarloNative//Ovra.App";

class AppUpgrader : public AgentTest {
  protected:
    AppUpgrader() {
        session.setWebServerName("com.ovratessel.example");
        session.setSessionKey("123456789");
        static_cast<void>(OvraAppUpgrader::getInstance());
        forgetLines();
    }
};

TEST_F(AppUpgrader, isMadeAndLoggedOnce) {
    OvraAppUpgrader::resetForTesting();
    auto& first = OvraAppUpgrader::getInstance();

    EXPECT_EQ(&first, &OvraAppUpgrader::getInstance());
    EXPECT_THAT(streams.logged(),
                ElementsAre("+[OvraAppUpgrader getInstance] : Update Info Object Allocated"));
}

TEST_F(AppUpgrader, stillStandsWhenItsLineCannotBeWritten) {
    OvraAppUpgrader::resetForTesting();
    fakes::FailingStreams failing(streams, 1);
    platform::ports().standardStreams = &failing;

    EXPECT_NO_THROW(static_cast<void>(OvraAppUpgrader::getInstance()));

    EXPECT_THAT(streams.logged(),
                ElementsAre(exceptionLine("+[OvraAppUpgrader getInstance]", "write failed")));
}

TEST_F(AppUpgrader, isOneForTwoConcurrentFirstCalls) {
    OvraAppUpgrader::resetForTesting();
    std::array<OvraAppUpgrader*, 2> seen{};
    {
        std::thread one([&seen] { seen[0] = &OvraAppUpgrader::getInstance(); });
        std::thread other([&seen] { seen[1] = &OvraAppUpgrader::getInstance(); });
        one.join();
        other.join();
    }

    EXPECT_NE(seen[0], nullptr);
    EXPECT_EQ(seen[0], seen[1]);
    EXPECT_THAT(streams.logged(),
                ElementsAre("+[OvraAppUpgrader getInstance] : Update Info Object Allocated"));
}

TEST_F(AppUpgrader, readsTheInstalledAgentsVersion) {
    putAgent("agent");
    bundles.info.insert_or_assign({kVersionCheckPath, "CFBundleShortVersionString"},
                                  platform::PropertyListValue("3.2.1"));

    OvraAppUpgrader::getInstance().ovraAppVersionCheck();

    EXPECT_EQ(session.localOvraAppVersion(), "3.2.1");
    EXPECT_THAT(streams.logged(),
                ElementsAre("-[OvraAppUpgrader ovraAppVersionCheck] local Ovra App version : 3.2.1 " +
                            kVersionCheckPath));
}

TEST_F(AppUpgrader, readsAVersionThatIsANumberAsText) {
    putAgent("agent");
    bundles.info.insert_or_assign({kVersionCheckPath, "CFBundleShortVersionString"},
                                  platform::PropertyListValue(std::int64_t{7}));

    OvraAppUpgrader::getInstance().ovraAppVersionCheck();

    EXPECT_EQ(session.localOvraAppVersion(), "7");
}

TEST_F(AppUpgrader, takesAMissingVersionForTheNullPlaceholder) {
    putAgent("agent");

    OvraAppUpgrader::getInstance().ovraAppVersionCheck();

    EXPECT_EQ(session.localOvraAppVersion(), "(null)");
    EXPECT_THAT(streams.logged(),
                ElementsAre("-[OvraAppUpgrader ovraAppVersionCheck] local Ovra App version : (null) " +
                            kVersionCheckPath));
}

TEST_F(AppUpgrader, takesAMissingAgentForVersion0) {
    session.setLocalOvraAppVersion("3.2.1");

    OvraAppUpgrader::getInstance().ovraAppVersionCheck();

    EXPECT_EQ(session.localOvraAppVersion(), "0");
    EXPECT_THAT(streams.logged(),
                ElementsAre("-[OvraAppUpgrader ovraAppVersionCheck] : Ovra app not found, Setting "
                            "app version to zero ( default) " +
                            kVersionCheckPath));
}

TEST_F(AppUpgrader, logsAFailureOfTheVersionCheck) {
    fakes::FailingStreams failing(streams, 1);
    platform::ports().standardStreams = &failing;

    OvraAppUpgrader::getInstance().ovraAppVersionCheck();

    EXPECT_THAT(streams.logged(),
                ElementsAre(exceptionLine("-[OvraAppUpgrader ovraAppVersionCheck]", "write failed")));
    EXPECT_EQ(session.localOvraAppVersion(), std::nullopt); // stored after its line
}

TEST_F(AppUpgrader, launchesTheInstalledAgentWhenItIsTheLatest) {
    putAgent("agent");
    std::string detailsAtLaunch;
    workspace.onLaunch = [&](const std::string&) { detailsAtLaunch = files.file(kJoinDetails)->contents; };

    OvraAppUpgrader::getInstance().ovraAppUpdater();

    ASSERT_EQ(workspace.launches.size(), 1U);
    EXPECT_EQ(workspace.launches[0].path, kAgent);
    EXPECT_THAT(workspace.launches[0].arguments, ElementsAre("-timestamps", kTimestamps));
    EXPECT_TRUE(detailsAtLaunch.starts_with("OVRA_VARLO_IND\n&key=123456789&")); // before the agent can start
    EXPECT_THAT(http.tasks, IsEmpty());
    const auto lines = streams.logged();
    EXPECT_EQ(lines.front(), "-[OvraAppUpgrader ovraAppUpdater] : This mac has latest Ovra App");
    EXPECT_EQ(lines.at(1), "-[OvraAppUpgrader modifyOvraJoinDetails] : Modify joindetails called!");
    EXPECT_EQ(lines.back(), kLaunchLine);
}

TEST_F(AppUpgrader, triesToLaunchAnAgentThatIsMissing) {
    workspace.launchError = platform::Error{"NSCocoaErrorDomain", 4, "No such application.", {}};

    OvraAppUpgrader::getInstance().ovraAppUpdater();

    EXPECT_NE(files.file(kJoinDetails), nullptr);
    EXPECT_EQ(workspace.launches.size(), 1U);
    EXPECT_EQ(streams.logged().back(), kLaunchLine);
    EXPECT_THAT(distributed.posts, IsEmpty());
}

TEST_F(AppUpgrader, removesTheOldAgentAndDownloadsTheNewOne) {
    files.putFolder(kOldAgentPath);
    files.putFile(kOldAgentPath + "/Contents/Info.plist", "old");
    session.setIsUpdateNeeded(true);

    OvraAppUpgrader::getInstance().ovraAppUpdater();

    EXPECT_THAT(files.journal, ElementsAre("remove " + kOldAgentPath, "create " + kJoinDetails));
    EXPECT_EQ(http.tasks.size(), 1U);
    EXPECT_THAT(workspace.launches, IsEmpty());
    const auto lines = streams.logged();
    EXPECT_EQ(lines.front(),
              "-[OvraAppUpgrader ovraAppUpdater] : Updated Ovra App Version Available in Server..");
    EXPECT_EQ(lines.at(1), "-[OvraAppUpgrader modifyOvraJoinDetails] : Modify joindetails called!");
    EXPECT_EQ(lines.at(5), "-[OvraDmgDownloader startDownLoadingOvraMacDmg] : Ovra Dmg Url : "
                           "com.ovratessel.example/agent/OvraMac.dmg");
}

TEST_F(AppUpgrader, findsNoOldAgentWhereLetterCaseCounts) {
    putAgent("old agent");
    session.setIsUpdateNeeded(true);

    OvraAppUpgrader::getInstance().ovraAppUpdater();

    EXPECT_EQ(installedAgent(), "old agent");
    EXPECT_THAT(files.journal, ElementsAre("create " + kJoinDetails));
    EXPECT_EQ(http.tasks.size(), 1U);
}

TEST_F(AppUpgrader, goesOnWhenTheOldAgentCannotBeRemoved) {
    files.putFolder(kOldAgentPath);
    files.failRemove(kOldAgentPath);
    session.setIsUpdateNeeded(true);

    OvraAppUpgrader::getInstance().ovraAppUpdater();

    EXPECT_EQ(http.tasks.size(), 1U);
    EXPECT_NE(files.file(kJoinDetails), nullptr);
}

TEST_F(AppUpgrader, logsAFailureOfTheHandOver) {
    fakes::FailingStreams failing(streams, 1);
    platform::ports().standardStreams = &failing;

    OvraAppUpgrader::getInstance().ovraAppUpdater();

    EXPECT_THAT(streams.logged(),
                ElementsAre(exceptionLine("-[OvraAppUpgrader ovraAppUpdater]", "write failed")));
    EXPECT_THAT(workspace.launches, IsEmpty());
}

TEST_F(AppUpgrader, launchesEvenWhenTheJoinDetailsCouldNotBeWritten) {
    files.failCreateFile(kJoinDetails);

    OvraAppUpgrader::getInstance().ovraAppUpdater();

    EXPECT_EQ(workspace.launches.size(), 1U);
}

TEST_F(AppUpgrader, keepsAnEarlierJoinsDownloadAlive) {
    session.setIsUpdateNeeded(true);
    mountWorks();
    files.putFile("/tmp/first", "image");
    OvraAppUpgrader::getInstance().ovraAppUpdater();

    OvraAppUpgrader::getInstance().ovraAppUpdater();
    http.finishDownload(0, 200, "/tmp/first");

    EXPECT_EQ(http.tasks.size(), 2U);
    EXPECT_EQ(installedAgent(), "new agent");
    EXPECT_EQ(workspace.launches.size(), 1U);
}

} // namespace
} // namespace lumora
