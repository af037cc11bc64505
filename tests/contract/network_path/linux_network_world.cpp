#include "network_world.h"
#include "platform/linux/gui/gio_path_monitors.h"

#include <gio/gio.h>

namespace lumora::contract {

std::unique_ptr<platform::PathMonitors> makePathMonitors() {
    return std::make_unique<platform::linux_backend::GioPathMonitors>();
}

bool hasNetworkPath() { return g_network_monitor_get_network_available(g_network_monitor_get_default()); }

bool announceChange() {
    g_signal_emit_by_name(g_network_monitor_get_default(), "network-changed", hasNetworkPath());
    return true;
}

} // namespace lumora::contract
