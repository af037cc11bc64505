#include "platform/linux/ports/linux_apple_scripts.h"

#include "platform/linux/ports/shell_script_statement.h"

#include <unistd.h>

#include <string_view>
#include <utility>
#include <vector>

namespace lumora::platform::linux_backend {

namespace {

constexpr int kUserCancelled = -128;  // errAEUserCanceled
constexpr int kPromptDismissed = 126; // pkexec(1)

constexpr const char* kShell = "/bin/sh";
constexpr const char* kPrivileges = "/usr/bin/pkexec";

/// Installed by the package, with a text of its own for the administrator's prompt. Does what kBeginAndRun does.
constexpr const char* kAdministratorShell = "/usr/libexec/ovra-tessel-lumora/administrator-shell";

/// Tells that the prompt is past: from here on an exit status is the command's own.
constexpr std::string_view kBegun = "ovra-tessel-lumora: the administrator's script begins\n";
constexpr const char* kBeginAndRun =
    R"(echo "ovra-tessel-lumora: the administrator's script begins"; exec /bin/sh -c "$1")";

/// Both streams are one: the tool's own complaint is as much of a message as the command's.
constexpr const char* kJoinStreams = R"(exec "$@" 2>&1)";

std::vector<std::string> shellArguments(const ShellScriptStatement& statement) {
    std::vector<std::string> arguments = {"-c", kJoinStreams, "sh"};
    if (!statement.administratorPrivileges)
        arguments.insert(arguments.end(), {kShell, "-c", statement.command});
    else if (::access(kAdministratorShell, X_OK) == 0)
        arguments.insert(arguments.end(), {kPrivileges, kAdministratorShell, statement.command});
    else
        arguments.insert(arguments.end(), {kPrivileges, kShell, "-c", kBeginAndRun, "sh", statement.command});
    return arguments;
}

std::optional<AppleScriptError> errorOf(int status, std::string output, bool administratorPrivileges) {
    const bool begun = administratorPrivileges && output.starts_with(kBegun);
    if (begun)
        output.erase(0, kBegun.size());
    if (status == 0)
        return std::nullopt;
    if (administratorPrivileges && !begun && status == kPromptDismissed)
        return AppleScriptError{kUserCancelled, "User canceled."};
    if (output.ends_with('\n'))
        output.pop_back();
    return AppleScriptError{status, std::move(output)};
}

class ShellScript final : public AppleScript {
  public:
    ShellScript(ShellScriptStatement statement, Environment environment, LinuxAppleScripts::Wait wait)
        : statement_(std::move(statement)), environment_(std::move(environment)), wait_(std::move(wait)) {}

    std::optional<AppleScriptError> execute() override {
        // Shared with the work, which may outlive this call.
        const auto outcome = std::make_shared<std::optional<AppleScriptError>>();
        const bool finished = wait_([outcome, statement = statement_, environment = environment_] {
            *outcome = run(statement, environment);
        });
        return finished ? *outcome : AppleScriptError{kUserCancelled, std::nullopt};
    }

  private:
    static std::optional<AppleScriptError> run(const ShellScriptStatement& statement,
                                               const Environment& environment) {
        auto ran = LinuxTaskRunner(environment).run(kShell, shellArguments(statement), TaskOutput::capture);
        if (!ran)
            return AppleScriptError{ran.error().code, ran.error().localizedDescription};
        return errorOf(ran.value().terminationStatus, std::move(ran.value().standardOutput),
                       statement.administratorPrivileges);
    }

    const ShellScriptStatement statement_;
    const Environment environment_;
    const LinuxAppleScripts::Wait wait_;
};

} // namespace

LinuxAppleScripts::LinuxAppleScripts(Environment environment, Wait wait)
    : environment_(std::move(environment)), wait_(std::move(wait)) {}

std::unique_ptr<AppleScript> LinuxAppleScripts::makeScript(const std::string& source) {
    auto statement = parseShellScriptStatement(source);
    if (!statement)
        return nullptr;
    return std::make_unique<ShellScript>(std::move(*statement), environment_, wait_);
}

} // namespace lumora::platform::linux_backend
