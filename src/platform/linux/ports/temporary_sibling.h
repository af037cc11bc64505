#pragma once

#include <string>

namespace lumora::platform::linux_backend {

/// A name in the same folder, for something that is made aside and then renamed into place. New at every call, in this
/// process and beside others.
[[nodiscard]] std::string temporarySiblingOf(const std::string& path);

} // namespace lumora::platform::linux_backend
