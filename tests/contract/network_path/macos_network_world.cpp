#include "network_world.h"
#include "platform/macos/network/network_path_monitors.h"

#include <cstdlib>

namespace lumora::contract {

std::unique_ptr<platform::PathMonitors> makePathMonitors() {
    return std::make_unique<platform::macos_backend::NetworkPathMonitors>();
}

bool hasNetworkPath() {
    // The tool's status says nothing of what it has found.
    const auto tells = [](const char* command) { return std::system(command) == 0; };
    return tells("/sbin/route -n get -inet default 2>/dev/null | /usr/bin/grep -q interface:") ||
           tells("/sbin/route -n get -inet6 default 2>/dev/null | /usr/bin/grep -q interface:");
}

bool announceChange() { return false; }

} // namespace lumora::contract
