#pragma once

#include <string>
#include <vector>

namespace lumora::platform::linux_backend {

/// The names in the folder open as `folder`, without "." and "..", in no particular order. Throws DiskImageFailure.
[[nodiscard]] std::vector<std::string> listFolder(int folder);

} // namespace lumora::platform::linux_backend
