#pragma once

#include <functional>
#include <string>
#include <vector>

namespace lumora::testing {

struct Outcome {
    int status = -1; ///< exit status, or 128 and the signal's number
    std::string standardOutput;
    std::string standardError;
};

/// Runs `program` (an absolute path) and waits for it. `prepare` runs in the new process before the program begins and
/// may end it.
[[nodiscard]] Outcome runProgram(
    const std::string& program, const std::vector<std::string>& arguments,
    const std::function<void()>& prepare = [] {});

/// Runs `body` in a process of its own, whose exit status is the body's result.
[[nodiscard]] int startProcess(const std::function<int()>& body);
/// Waits for such a process: its exit status, or 128 and the signal's number.
[[nodiscard]] int waitForProcess(int process);

} // namespace lumora::testing
