#pragma once

#include "platform/result.h"

#include <string>

namespace lumora::platform::linux_backend {

class TemporarySibling;

/// Removes what stands at the path with all it holds. Links are removed, never followed, also when they are exchanged
/// for folders meanwhile; folders that are read-only to the user are opened up first.
Result<void> removeTree(const std::string& path);

/// Whether the user may remove what stands at the path with all it holds, as far as that can be seen beforehand. The
/// result is an errno, 0 for yes.
[[nodiscard]] int findRemovalObstacle(const std::string& path);

/// Copies a file, link or folder whole, aside: contents, modes, links as links, modification times and extended
/// attributes. Devices, pipes and sockets are refused.
Result<void> copyTree(const std::string& source, TemporarySibling& aside);

} // namespace lumora::platform::linux_backend
