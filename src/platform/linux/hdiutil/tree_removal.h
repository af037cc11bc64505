#pragma once

#include <string>

namespace lumora::platform::linux_backend {

/// Removes the entry `name` of the folder open as `parent`, with everything in it, read-only folders too. Links are
/// removed, never followed, and another file system found inside is left alone. What is already gone, perhaps by
/// another process that removes the same tree, is no error. Throws DiskImageFailure if something cannot be removed.
void removeTree(int parent, const std::string& name);

} // namespace lumora::platform::linux_backend
