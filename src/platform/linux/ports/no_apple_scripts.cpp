#include "platform/linux/ports/no_apple_scripts.h"

namespace lumora::platform::linux_backend {

namespace {

constexpr int kCannotOpenComponent = -1762; // errOSACantOpenComponent

} // namespace

Result<void> NoAppleScripts::run(const std::string& /*source*/) {
    return Error{
        "NSOSStatusErrorDomain", kCannotOpenComponent, "AppleScript is not available on this system.", {}};
}

} // namespace lumora::platform::linux_backend
