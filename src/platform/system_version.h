#pragma once

#include <optional>
#include <string>

namespace lumora::platform {

/// The operating system's own words about itself, read afresh each time; both absent when its version file cannot
/// be read.
struct SystemVersion {
    std::optional<std::string> productName;    ///< "macOS", "Debian GNU/Linux"
    std::optional<std::string> productVersion; ///< "13.2.1", "12"
};

/// Callable from any thread.
class SystemVersions {
  public:
    virtual ~SystemVersions() = default;
    [[nodiscard]] virtual SystemVersion current() = 0;
};

} // namespace lumora::platform
