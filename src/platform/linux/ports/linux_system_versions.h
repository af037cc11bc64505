#pragma once

#include "platform/system_version.h"

#include <string>
#include <vector>

namespace lumora::platform::linux_backend {

/// NAME and VERSION_ID of the first readable os-release file.
class LinuxSystemVersions final : public SystemVersions {
  public:
    explicit LinuxSystemVersions(std::vector<std::string> files = {"/etc/os-release", "/usr/lib/os-release"});

    SystemVersion current() override;

  private:
    const std::vector<std::string> files_;
};

} // namespace lumora::platform::linux_backend
