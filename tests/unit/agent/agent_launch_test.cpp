#include "agent/agent_test.h"

namespace lumora {
namespace {

using fakes::exceptionLine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AgentLaunch : public AgentTest {
  protected:
    std::shared_ptr<OvraDmgDownloader> downloader = std::make_shared<OvraDmgDownloader>();
};

TEST_F(AgentLaunch, givesTheAgentItsTwoArguments) {
    EXPECT_TRUE(downloader->workspaceLaunchApplication(kAgent));

    ASSERT_EQ(workspace.launches.size(), 1U);
    EXPECT_EQ(workspace.launches[0].path, kAgent);
    EXPECT_THAT(workspace.launches[0].arguments, ElementsAre("-timestamps", kTimestamps));
    EXPECT_THAT(streams.logged(), ElementsAre(kLaunchLine));
}

TEST_F(AgentLaunch, claimsSuccessForALaunchThatFailed) {
    workspace.launchError = platform::Error{"NSCocoaErrorDomain", 4, "No such application.", {}};

    EXPECT_TRUE(downloader->workspaceLaunchApplication(kAgent));

    EXPECT_THAT(streams.logged(), ElementsAre(kLaunchLine));
    EXPECT_THAT(distributed.posts, IsEmpty());
}

TEST_F(AgentLaunch, claimsSuccessAfterAnExceptionTooAndTellsOtherProcesses) {
    workspace.throwOnLaunch = true;

    EXPECT_TRUE(downloader->workspaceLaunchApplication(kAgent));

    EXPECT_THAT(streams.logged(),
                ElementsAre(exceptionLine("-[OvraDmgDownloader workspaceLaunchApplication:]",
                                          "launch services unavailable")));
    EXPECT_THAT(distributed.posts, ElementsAre(fakes::FakeDistributedNotifications::Post{
                                       "SendSessionStatusToTesselLumora", "status", 0}));
}

} // namespace
} // namespace lumora
