#pragma once

#include "platform/result.h"

#include <algorithm>
#include <string>
#include <vector>

namespace lumora::platform {

/// What becomes of a tool's standard output.
enum class TaskOutput { discard, capture };

/// How a tool ended.
struct TaskResult {
    int terminationStatus = 0;  ///< exit status, or the signal's number when a signal ended it
    std::string standardOutput; ///< empty unless captured
};

/// Whether the arguments reach a tool as they are: one with a NUL in it would be cut short there.
[[nodiscard]] inline bool arriveWhole(const std::vector<std::string>& arguments) {
    return std::none_of(arguments.begin(), arguments.end(),
                        [](const std::string& argument) { return argument.find('\0') != std::string::npos; });
}

/// Runs command-line tools to their end. Callable from any thread; blocks it.
class TaskRunner {
  public:
    virtual ~TaskRunner() = default;

    /// Runs the tool at an absolute path with exactly these arguments. An error means that it never started.
    /// The child gets neither the application's log as a stream nor its descriptors.
    virtual Result<TaskResult> run(const std::string& executable, const std::vector<std::string>& arguments,
                                   TaskOutput output) = 0;
};

} // namespace lumora::platform
