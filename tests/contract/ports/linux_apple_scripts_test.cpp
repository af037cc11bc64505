#include "support/backend.h"

#include <gtest/gtest.h>

namespace lumora::contract {
namespace {

using platform::AppleScriptError;
using platform::linux_backend::LinuxAppleScripts;

/// What stands for scripts where there are none.
class LinuxAppleScriptsContract : public ::testing::Test {
  protected:
    std::optional<AppleScriptError> run(const std::string& source) {
        const auto script = scripts->makeScript(source);
        EXPECT_NE(script, nullptr) << source;
        return script ? script->execute() : std::nullopt;
    }

    std::unique_ptr<platform::AppleScripts> scripts = makeAppleScripts();
};

TEST_F(LinuxAppleScriptsContract, noScriptCanBeMadeOfAnythingButAShellScript) {
    EXPECT_EQ(scripts->makeScript("tell application \"Finder\" to activate"), nullptr);
    EXPECT_EQ(scripts->makeScript(""), nullptr);
}

TEST_F(LinuxAppleScriptsContract, aFailuresTextIsAllThatWasPrinted) {
    const auto error = run(R"(do shell script "echo one; echo two >&2; exit 3")");

    ASSERT_TRUE(error);
    EXPECT_EQ(error->number, 3);
    EXPECT_EQ(error->message, "one\ntwo");
}

TEST_F(LinuxAppleScriptsContract, aFailureWithoutTextHasAnEmptyOne) {
    const auto error = run(R"(do shell script "exit 126")");

    ASSERT_TRUE(error);
    EXPECT_EQ(error->number, 126); // only an administrator's prompt can be dismissed
    EXPECT_EQ(error->message.value_or(""), "");
}

TEST_F(LinuxAppleScriptsContract, anEndOfTheApplicationIsACancel) {
    LinuxAppleScripts leaving({}, [](const std::function<void()>&) { return false; });

    const auto error = leaving.makeScript(R"(do shell script "exit 0")")->execute();

    ASSERT_TRUE(error);
    EXPECT_EQ(error->number, -128);
}

} // namespace
} // namespace lumora::contract
