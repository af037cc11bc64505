#pragma once

#include "platform/result.h"

#include <string>

namespace lumora::platform::posix_backend {

/// The error value for an errno: domain "NSPOSIXErrorDomain", the number, and a sentence that names the subject
/// (usually a path) and the system's own text.
[[nodiscard]] Error posixError(int number, const std::string& subject);

} // namespace lumora::platform::posix_backend
