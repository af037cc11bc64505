#pragma once

#include <memory>
#include <string>

namespace lumora::platform::posix_backend {

/// Holds the folder against other holders, in this process and others, until the result and its copies are gone. Waits
/// for them; who holds it for longer than some seconds counts as hung, and the result is then empty, as where the
/// folder or its locks do not exist.
[[nodiscard]] std::shared_ptr<void> holdFolder(const std::string& path);

} // namespace lumora::platform::posix_backend
