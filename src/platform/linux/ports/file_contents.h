#pragma once

namespace lumora::platform::linux_backend {

/// Copies the bytes of one open file to another, empty one: by sharing them where the file system can, else inside the
/// kernel, else through memory. The result is an errno, 0 for success.
[[nodiscard]] int copyContents(int from, int to);

} // namespace lumora::platform::linux_backend
