#include "platform/linux/ports/linux_apple_scripts.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <thread>

namespace lumora::contract {
namespace {

using platform::AppleScriptError;
using platform::linux_backend::LinuxAppleScripts;

class AppleScriptsContract : public ::testing::Test {
  protected:
    static bool waitOnAThread(std::function<void()> work) {
        std::thread(std::move(work)).join();
        return true;
    }

    LinuxAppleScripts scripts{platform::posix_backend::currentEnvironment(), waitOnAThread};

    std::optional<AppleScriptError> run(const std::string& source) {
        const auto script = scripts.makeScript(source);
        EXPECT_NE(script, nullptr) << source;
        return script ? script->execute() : std::nullopt;
    }
};

TEST_F(AppleScriptsContract, noScriptCanBeMadeOfAnythingButAShellScript) {
    EXPECT_EQ(scripts.makeScript("tell application \"Finder\" to activate"), nullptr);
    EXPECT_EQ(scripts.makeScript(""), nullptr);
}

TEST_F(AppleScriptsContract, aScriptThatSucceedsLeavesNoError) {
    EXPECT_EQ(run(R"(do shell script "echo fine; echo complaint >&2")"), std::nullopt);
}

TEST_F(AppleScriptsContract, aScriptRunsOncePerExecution) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "it's here";
    const auto script =
        scripts.makeScript("do shell script \"echo run >> \" & quoted form of \"" + file.string() + "\"");
    ASSERT_NE(script, nullptr);
    EXPECT_FALSE(std::filesystem::exists(file)); // nothing before it is executed

    EXPECT_EQ(script->execute(), std::nullopt);
    EXPECT_EQ(script->execute(), std::nullopt);

    EXPECT_EQ(std::filesystem::file_size(file), 8U);
}

TEST_F(AppleScriptsContract, aFailureTellsStatusAndText) {
    const auto error = run(R"(do shell script "echo one; echo two >&2; exit 3")");

    ASSERT_TRUE(error);
    EXPECT_EQ(error->number, 3);
    EXPECT_EQ(error->message, "one\ntwo");
}

TEST_F(AppleScriptsContract, aFailureWithoutTextHasAnEmptyOne) {
    const auto error = run(R"(do shell script "exit 126")");

    ASSERT_TRUE(error);
    EXPECT_EQ(error->number, 126); // only an administrator's prompt can be dismissed
    EXPECT_EQ(error->message.value_or(""), "");
}

TEST_F(AppleScriptsContract, anEndOfTheApplicationIsACancel) {
    LinuxAppleScripts leaving({}, [](const std::function<void()>&) { return false; });

    const auto error = leaving.makeScript(R"(do shell script "exit 0")")->execute();

    ASSERT_TRUE(error);
    EXPECT_EQ(error->number, -128);
}

} // namespace
} // namespace lumora::contract
