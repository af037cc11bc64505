#pragma once

#include "platform/result.h"

#include <string>

namespace lumora::platform::linux_backend {

/// Removes what stands at the path with all it holds. Links are removed, never followed, also when they are exchanged
/// for folders meanwhile; folders that are read-only to the user are opened up first.
Result<void> removeTree(const std::string& path);

/// Copies a file, link or folder whole to a path where nothing stands: contents, modes, links as links, modification
/// times and extended attributes. What stands there after an error is the caller's to remove. Devices, pipes and
/// sockets are refused.
Result<void> copyTree(const std::string& source, const std::string& destination);

} // namespace lumora::platform::linux_backend
