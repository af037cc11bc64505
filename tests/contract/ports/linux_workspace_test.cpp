#include "platform/linux/ports/linux_bundles.h"
#include "platform/linux/ports/linux_property_lists.h"
#include "platform/linux/ports/linux_workspace.h"
#include "support/eventually.h"
#include "support/linux_desktop.h"
#include "support/temporary_folder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

namespace lumora::contract {
namespace {

namespace fs = std::filesystem;
using platform::PropertyListDictionary;
using platform::linux_backend::HomeFolder;
using platform::linux_backend::LinuxBundles;
using platform::linux_backend::LinuxWorkspace;
using testing::HasSubstr;
using testing::Not;

/// What a program is given when it is started, and which programs are.
class LinuxWorkspaceContract : public testing::Test {
  protected:
    LinuxWorkspaceContract() {
        LinuxDesktop::instance().handleBy(
            fmt::format("{{ echo \"[$#][$1]\"; env; readlink /proc/$$/fd/0 /proc/$$/fd/1 "
                        "/proc/$$/fd/2; }} > {0}.part 2>/dev/null\nmv {0}.part {0}\n",
                        opened_));
    }

    /// A bundle whose program reports about itself and then waits to be ended.
    std::string makeAgent(const PropertyListDictionary& info = {{"CFBundleExecutable", "Agent"}}) {
        const std::string bundle = folder_ / "Ovra.app";
        fs::create_directories(bundle + "/Contents/MacOS");
        writeFile(bundle + "/Contents/Info.plist", lists_.serializeXml(info).value());
        writeFile(bundle + "/Contents/MacOS/Agent",
                  fmt::format("#!/bin/sh\n{{ echo pid=$$; for a in \"$@\"; do echo \"[$a]\"; done; env; pwd; "
                              "cut -d' ' -f6 /proc/$$/stat | sed s/^/session=/; ls -l /proc/$$/fd; "
                              "grep ^Sig /proc/self/status; }} > {0}.part\nmv {0}.part {0}\nexec sleep 60\n",
                              report_));
        fs::permissions(bundle + "/Contents/MacOS/Agent", fs::perms(0755));
        return bundle;
    }

    /// Waits for the agent's report; its process ends with the test.
    std::string reportOfAgent() {
        if (!eventually([&] { return fs::exists(report_); }))
            return "no report";
        const std::string text = contentsOf(report_);
        agent_ = static_cast<pid_t>(std::stol(text.substr(text.find("pid=") + 4)));
        return text;
    }

    ~LinuxWorkspaceContract() override {
        if (agent_ > 0)
            ::kill(agent_, SIGKILL);
    }

    TemporaryFolder folder_;
    const std::string report_ = folder_ / "agent-report";
    const std::string opened_ = folder_ / "opened";
    pid_t agent_ = 0;
    platform::linux_backend::LinuxPropertyLists lists_;
    const HomeFolder home_{folder_.path()};
    LinuxBundles bundles_{"/usr/bin/tool", home_, lists_};
    LinuxWorkspace workspace_{bundles_, home_, {"PATH=/usr/bin:/bin", "KEPT=yes"}};
};

TEST_F(LinuxWorkspaceContract, anApplicationGetsTheGivenEnvironmentAndNothingOfOurs) {
    const std::string bundle = makeAgent();
    const int inherited = ::open("/etc/passwd", O_RDONLY); // deliberately without close-on-exec
    ::setenv("GSK_RENDERER", "cairo", 1);

    const auto launched =
        workspace_.launchApplication(bundle, {"-timestamps", "{\"M3\":\"a b\",\"M2\":\"\"}", ""});
    ASSERT_TRUE(launched) << launched.error().localizedDescription;
    const std::string report = reportOfAgent();
    ::close(inherited);

    EXPECT_THAT(report, HasSubstr("\n[-timestamps]\n[{\"M3\":\"a b\",\"M2\":\"\"}]\n[]\n"));
    EXPECT_THAT(report, HasSubstr(fmt::format("\nsession={}\n", agent_)));
    EXPECT_THAT(report, HasSubstr("\n/\n")) << "its working folder";
    EXPECT_THAT(report, HasSubstr("KEPT=yes"));
    EXPECT_THAT(report, Not(HasSubstr("GSK_RENDERER")));
    EXPECT_THAT(report, HasSubstr("0 -> /dev/null"));
    EXPECT_THAT(report, HasSubstr("2 -> /dev/null"));
    EXPECT_THAT(report, Not(HasSubstr("passwd")));
    EXPECT_THAT(report, HasSubstr("SigBlk:\t0000000000000000"));
}

TEST_F(LinuxWorkspaceContract, whateverIsMissingInABundleIsAnError) {
    EXPECT_FALSE(workspace_.launchApplication(folder_ / "missing.app", {}));
    EXPECT_FALSE(workspace_.launchApplication(makeAgent({}), {}));
    EXPECT_FALSE(workspace_.launchApplication(makeAgent({{"CFBundleExecutable", std::int64_t{1}}}), {}));

    const auto missing = workspace_.launchApplication(makeAgent({{"CFBundleExecutable", "Other"}}), {});
    ASSERT_FALSE(missing);
    EXPECT_EQ(ENOENT, missing.error().code);

    const std::string bundle = makeAgent();
    fs::permissions(bundle + "/Contents/MacOS/Agent", fs::perms(0644));
    const auto notExecutable = workspace_.launchApplication(bundle, {});
    ASSERT_FALSE(notExecutable);
    EXPECT_EQ(EACCES, notExecutable.error().code);
}

TEST_F(LinuxWorkspaceContract, anExecutableOutsideTheBundlesOwnFolderIsRefused) {
    for (const char* name : {"../MacOS/Agent", "/bin/true", "..", ".", "", "sub/Agent"})
        EXPECT_FALSE(workspace_.launchApplication(makeAgent({{"CFBundleExecutable", name}}), {})) << name;
    EXPECT_FALSE(fs::exists(report_));
}

TEST_F(LinuxWorkspaceContract, aHandlerGetsTheGivenEnvironmentAndHarmlessStreams) {
    ::setenv("GSK_RENDERER", "cairo", 1);

    ASSERT_TRUE(workspace_.openUrl("lumoratest:join?key=1%202&x='y'"));
    ASSERT_TRUE(eventually([&] { return fs::exists(opened_); }));
    const std::string report = contentsOf(opened_);

    EXPECT_THAT(report, HasSubstr("[1][lumoratest:join?key=1%202&x='y']\n"));
    EXPECT_THAT(report, HasSubstr("KEPT=yes"));
    EXPECT_THAT(report, Not(HasSubstr("GSK_RENDERER")));
    EXPECT_THAT(report, Not(HasSubstr("XDG_DATA_HOME")));
    EXPECT_THAT(report, HasSubstr("/dev/null\n"));
}

} // namespace
} // namespace lumora::contract
