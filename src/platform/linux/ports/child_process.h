#pragma once

#include "platform/result.h"

#include <sys/types.h>

#include <string>
#include <vector>

namespace lumora::platform::linux_backend {

/// "NAME=value" entries.
using Environment = std::vector<std::string>;

/// The process's environment now. The composition root takes it first of all, before it sets anything for its own
/// window, and gives it to everything that starts children.
[[nodiscard]] Environment currentEnvironment();

/// How a child is started. Standard input and error are the null device, descriptors from 3 on are closed, signal
/// mask and handlers are the defaults.
struct ChildProcess {
    std::string executable;             ///< an absolute path
    std::vector<std::string> arguments; ///< without the name of the program itself
    Environment environment;
    int standardOutput = -1; ///< a descriptor of the caller's; -1: the null device
    bool detached = false;   ///< in a session of its own, working in the root folder
};

/// Starts it; the value is the child's process identifier. The caller waits for it.
Result<pid_t> spawn(const ChildProcess& child);

/// Waits for the child on a thread of its own, so that it leaves no entry in the process table when it ends.
void reapInBackground(pid_t child);

/// Waits for the end of a child: its exit status, or the number of the signal that ended it.
Result<int> waitForChild(pid_t child);

} // namespace lumora::platform::linux_backend
