#pragma once

#include "support/http_fixture.h"

#include <functional>
#include <utility>

namespace lumora::contract {

/// Sessions of the Linux backend, whose certificate authorities, limits and network path a test can choose.
class LinuxHttpFixture : public HttpFixture {
  protected:
    /// New sessions with other settings.
    void use(
        platform::linux_backend::HttpTransferSettings settings,
        std::function<bool()> hasNetworkPath = [] { return true; }) {
        sessions_ = std::make_unique<platform::linux_backend::LinuxHttpSessions>(std::move(settings),
                                                                                 std::move(hasNetworkPath));
    }
};

} // namespace lumora::contract
