#include "support/backend.h"
#include "support/eventually.h"
#include "support/temporary_folder.h"
#include "support/workspace_world.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <thread>

namespace lumora::contract {
namespace {

namespace fs = std::filesystem;
using platform::PropertyListArray;
using platform::PropertyListDictionary;
using testing::HasSubstr;
using testing::Not;

class WorkspaceContract : public testing::Test {
  protected:
    ~WorkspaceContract() override {
        if (agent_ > 0)
            ::kill(agent_, SIGKILL);
    }

    /// A bundle whose program records beside it how it was started and what it was asked to open.
    void makeAgent(const std::string& program = "Agent") {
        const PropertyListDictionary type{{"CFBundleURLName", world_.scheme()},
                                          {"CFBundleURLSchemes", PropertyListArray{world_.scheme()}}};
        const PropertyListDictionary info{
            {"CFBundleExecutable", program},
            {"CFBundleIdentifier", fmt::format("com.ovra.tessel.contract.agent{}", ::getpid())},
            {"CFBundleName", "Agent"},
            {"CFBundlePackageType", "APPL"},
            {"CFBundleVersion", "1"},
            {"LSUIElement", true},
            {"CFBundleURLTypes", PropertyListArray{type}}};
        fs::create_directories(bundle_ + "/Contents/MacOS");
        writeFile(bundle_ + "/Contents/Info.plist", PropertyLists().serializeXml(info).value());
        fs::copy_file(LUMORA_RECORDING_APPLICATION, bundle_ + "/Contents/MacOS/Agent");
    }

    /// Waits for the launched agent's record; its process ends with the test.
    std::string recordOfAgent() {
        if (!eventually([&] { return fs::exists(folder_ / "launched"); }))
            return "no record";
        const std::string text = contentsOf(folder_ / "launched");
        agent_ = static_cast<pid_t>(std::stol(text.substr(text.find("program=") + 8)));
        return text;
    }

    /// Waits for what the handler was asked to open.
    std::string opened() {
        return eventually([&] { return fs::exists(folder_ / "opened"); }) ? contentsOf(folder_ / "opened")
                                                                          : "nothing";
    }

    TemporaryFolder folder_;
    const std::string bundle_ = fs::canonical(folder_.path()).string() + "/Ovra.app";
    WorkspaceWorld world_;
    pid_t agent_ = 0;
};

TEST_F(WorkspaceContract, anApplicationIsStartedDetachedWithItsExactArguments) {
    makeAgent();

    const auto launched =
        world_.workspace().launchApplication(bundle_, {"-timestamps", "{\"M3\":\"a b\",\"M2\":\"\"}", ""});
    ASSERT_TRUE(launched) << launched.error().localizedDescription;
    const std::string record = recordOfAgent();

    EXPECT_THAT(record, HasSubstr("\n[-timestamps]\n[{\"M3\":\"a b\",\"M2\":\"\"}]\n[]\n"));
    EXPECT_THAT(record, HasSubstr("\nfolder=/\n"));
    EXPECT_THAT(record, Not(HasSubstr(fmt::format("\ngroup={}\n", ::getpgrp()))))
        << "what ends this program's group would end it";
}

TEST_F(WorkspaceContract, aLaunchedApplicationThatEndsLeavesNoZombie) {
    makeAgent();
    ASSERT_TRUE(world_.workspace().launchApplication(bundle_, {}));
    recordOfAgent();
    ASSERT_GT(agent_, 0);
    ASSERT_EQ(0, ::kill(agent_, SIGKILL));

    EXPECT_TRUE(eventually([&] { return ::kill(agent_, 0) != 0 && errno == ESRCH; }));
    agent_ = 0;
}

TEST_F(WorkspaceContract, aBundleThatIsMissingOrHasNoProgramIsAnError) {
    EXPECT_FALSE(world_.workspace().launchApplication(folder_ / "missing.app", {}));

    makeAgent("Other");
    EXPECT_FALSE(world_.workspace().launchApplication(bundle_, {}));
    EXPECT_FALSE(fs::exists(folder_ / "launched"));
}

TEST_F(WorkspaceContract, anAddressOpensInTheHandlerOfItsScheme) {
    makeAgent();
    world_.registerHandler(bundle_);
    const std::string address = world_.scheme() + ":join?key=1%202&x='y'";

    ASSERT_TRUE(world_.workspace().openUrl(address));

    EXPECT_EQ(address, opened());
}

TEST_F(WorkspaceContract, anAddressOpensFromAnyThread) {
    makeAgent();
    world_.registerHandler(bundle_);
    const std::string address = world_.scheme() + ":other";
    bool isOpened = false;

    std::thread([&] { isOpened = world_.workspace().openUrl(address); }).join();

    EXPECT_TRUE(isOpened);
    EXPECT_EQ(address, opened());
}

TEST_F(WorkspaceContract, anAddressWithoutHandlerOrSchemeIsNotOpened) {
    if (WorkspaceWorld::asksAPerson())
        GTEST_SKIP() << "this system asks a person what is to open it";
    EXPECT_FALSE(world_.workspace().openUrl("nobodyhandles:this"));
    EXPECT_FALSE(world_.workspace().openUrl("no scheme"));
    EXPECT_FALSE(world_.workspace().openUrl(""));
}

} // namespace
} // namespace lumora::contract
