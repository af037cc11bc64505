#include "network_world.h"
#include "platform/macos/network/network_path_monitors.h"

#include <cstdlib>

namespace lumora::contract {

std::unique_ptr<platform::PathMonitors> makePathMonitors() {
    return std::make_unique<platform::macos_backend::NetworkPathMonitors>();
}

bool hasNetworkPath() {
    const auto succeeds = [](const char* command) { return std::system(command) == 0; };
    return succeeds("/sbin/route -n get -inet default >/dev/null 2>&1") ||
           succeeds("/sbin/route -n get -inet6 default >/dev/null 2>&1");
}

bool announceChange() { return false; }

} // namespace lumora::contract
