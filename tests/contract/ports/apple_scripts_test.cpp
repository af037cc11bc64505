#include "support/backend.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

namespace lumora::contract {
namespace {

using platform::AppleScriptError;

class AppleScriptsContract : public testing::Test {
  protected:
    std::optional<AppleScriptError> run(const std::string& source) {
        const auto script = scripts_->makeScript(source);
        EXPECT_NE(nullptr, script) << source;
        return script ? script->execute() : std::nullopt;
    }

    std::unique_ptr<platform::AppleScripts> scripts_ = makeAppleScripts();
};

TEST_F(AppleScriptsContract, aScriptThatSucceedsLeavesNoError) {
    EXPECT_EQ(std::nullopt, run(R"(do shell script "echo fine; echo complaint >&2")"));
}

TEST_F(AppleScriptsContract, aScriptRunsOncePerExecution) {
    const TemporaryFolder folder;
    const std::string file = folder / "it's here";
    const auto script =
        scripts_->makeScript("do shell script \"echo run >> \" & quoted form of \"" + file + "\"");
    ASSERT_NE(nullptr, script);
    EXPECT_FALSE(std::filesystem::exists(file)) << "nothing before it is executed";

    EXPECT_EQ(std::nullopt, script->execute());
    EXPECT_EQ(std::nullopt, script->execute());

    EXPECT_EQ("run\nrun\n", contentsOf(file));
}

TEST_F(AppleScriptsContract, aFailureTellsStatusAndText) {
    const auto error = run(R"(do shell script "echo complaint >&2; exit 3")");

    ASSERT_TRUE(error);
    EXPECT_EQ(3, error->number);
    EXPECT_EQ("complaint", error->message);
}

TEST_F(AppleScriptsContract, aFailureTellsTheTextOfJoinedStreams) {
    const auto error =
        run(R"(do shell script "/bin/sh -c " & quoted form of "echo complaint >&2; exit 3" & " 2>&1")");

    ASSERT_TRUE(error);
    EXPECT_EQ(3, error->number);
    EXPECT_EQ("complaint", error->message);
}

TEST_F(AppleScriptsContract, aFailureWithoutTextTellsItsStatus) {
    const auto error = run(R"(do shell script "exit 126")");

    ASSERT_TRUE(error);
    EXPECT_EQ(126, error->number) << "only an administrator's prompt can be dismissed";
}

TEST_F(AppleScriptsContract, whatIsNoScriptRunsNothing) {
    const TemporaryFolder folder;
    const auto script = scripts_->makeScript("do shell script \"touch " + (folder / "ran") + "\" & (");

    EXPECT_TRUE(script == nullptr || script->execute());
    EXPECT_FALSE(std::filesystem::exists(folder / "ran"));
}

} // namespace
} // namespace lumora::contract
