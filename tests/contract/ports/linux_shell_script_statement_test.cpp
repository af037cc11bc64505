#include "platform/linux/ports/shell_script_statement.h"

#include <gtest/gtest.h>

namespace lumora::contract {
namespace {

using platform::linux_backend::parseShellScriptStatement;
using platform::linux_backend::ShellScriptStatement;

TEST(ShellScriptStatementContract, isALiteralForTheShell) {
    EXPECT_EQ(parseShellScriptStatement(R"(do shell script "ls -l")"),
              (ShellScriptStatement{"ls -l", false}));
    EXPECT_EQ(parseShellScriptStatement("  do  shell\tscript \"x\" \n"), (ShellScriptStatement{"x", false}));
}

TEST(ShellScriptStatementContract, joinsItsTerms) {
    EXPECT_EQ(parseShellScriptStatement(R"(do shell script "a " & "b" & " c")"),
              (ShellScriptStatement{"a b c", false}));
}

TEST(ShellScriptStatementContract, quotesForTheShell) {
    EXPECT_EQ(parseShellScriptStatement(R"(do shell script "cat " & quoted form of "/tmp/it's $HOME.sh")"),
              (ShellScriptStatement{R"(cat '/tmp/it'\''s $HOME.sh')", false}));
}

TEST(ShellScriptStatementContract, mayAskForAnAdministratorsRights) {
    EXPECT_EQ(
        parseShellScriptStatement(
            R"(do shell script "/bin/bash " & quoted form of "/tmp/a.sh" & " -x" with administrator privileges)"),
        (ShellScriptStatement{"/bin/bash '/tmp/a.sh' -x", true}));
}

TEST(ShellScriptStatementContract, knowsTheEscapesOfALiteral) {
    EXPECT_EQ(parseShellScriptStatement(R"(do shell script "a\"b\\c\n\r\t")"),
              (ShellScriptStatement{"a\"b\\c\n\r\t", false}));
}

TEST(ShellScriptStatementContract, isNothingElse) {
    for (const char* source :
         {"", "return 1", "do shell script", "do shell script \"a", R"(do shell script "a" &)",
          R"(do shell script "a" "b")", R"(do shell script "a" with privileges)",
          R"(do shell script "a" with administrator privileges and more)",
          R"(do shell script quoted form "a")", R"(do shell script "a\q")", "do shell script \"a\\",
          "do shell script \"a\"\nbeep", R"(doshell script "a")", R"(do shell scripts "a")",
          R"(do shell script quotedform of "a")", R"(tell application "System Preferences" to activate)"})
        EXPECT_EQ(parseShellScriptStatement(source), std::nullopt) << source;
}

} // namespace
} // namespace lumora::contract
