#pragma once

#include <string>
#include <vector>

namespace lumora::platform::linux_backend {

/// The process's environment, one "NAME=value" each, in the form that spawning takes.
[[nodiscard]] std::vector<std::string> currentEnvironment();

/// Chooses software drawing for our own window, unless the user has chosen: a join form needs no GPU, the window
/// appears sooner, and faulty GPU drivers cannot leave it blank. Call before GTK starts and before any thread, and take
/// `currentEnvironment` for child processes first: the choice is not theirs.
void preferSoftwareRendering();

} // namespace lumora::platform::linux_backend
