#pragma once

#include <string>

namespace lumora::platform::posix_backend {

/// Whether the user may remove what stands at the path with all it holds, as far as that can be seen beforehand. No
/// slash ends the path. The result is an errno, 0 for yes.
[[nodiscard]] int findRemovalObstacle(const std::string& path);

} // namespace lumora::platform::posix_backend
