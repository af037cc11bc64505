#pragma once

#include "platform/result.h"

#include <fcntl.h>

#include <string>
#include <vector>

namespace lumora::platform::posix_backend {

/// How a folder is opened to look into it, never through a link.
inline constexpr int kOpenFolder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

/// The names in an open folder, whose descriptor and reading position stay as they are; none when it cannot be listed.
[[nodiscard]] std::vector<std::string> namesIn(int folder);

/// Removes what stands at the path with all it holds. Links are removed, never followed, also when they are exchanged
/// for folders meanwhile; folders that are read-only to the user are opened up first.
Result<void> removeTree(const std::string& path);

} // namespace lumora::platform::posix_backend
