#pragma once

#include <string>

namespace lumora {

/// The version of the bundle at a path; the null placeholder, as text, when the bundle does not tell one. Any thread.
[[nodiscard]] std::string bundleVersion(const std::string& path);

} // namespace lumora
