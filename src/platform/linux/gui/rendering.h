#pragma once

namespace lumora::platform::linux_backend {

/// Chooses software drawing for our own window, unless the user has chosen: a join form needs no GPU, the window
/// appears sooner, and faulty GPU drivers cannot leave it blank. Before GTK starts and before any thread, and after the
/// environment for child processes has been taken: the choice is not theirs.
void preferSoftwareRendering();

} // namespace lumora::platform::linux_backend
