#pragma once

#include <sys/stat.h>

namespace lumora::platform::linux_backend {

/// Gives one open file or folder the extended attributes, mode and times of another, whose status is given. The result
/// is an errno, 0 for success.
[[nodiscard]] int copyAttributes(int from, int to, const struct stat& status);

} // namespace lumora::platform::linux_backend
