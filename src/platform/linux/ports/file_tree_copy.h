#pragma once

#include "platform/posix/temporary_sibling.h"
#include "platform/result.h"

#include <string>

namespace lumora::platform::linux_backend {

/// Copies a file, link or folder whole, aside: contents, modes, links as links, modification times and extended
/// attributes. Devices, pipes and sockets are refused.
Result<void> copyTree(const std::string& source, posix_backend::TemporarySibling& aside);

} // namespace lumora::platform::linux_backend
