#pragma once

#include "platform/path_monitor.h"

#include <memory>

namespace lumora::contract {

/// The system's network as its path monitors see it. One implementation a backend.

[[nodiscard]] std::unique_ptr<platform::PathMonitors> makePathMonitors();

/// What else than a monitor tells whether there is a usable network.
[[nodiscard]] bool hasNetworkPath();

/// Lets the system tell its monitors that something about the network has changed, which has not; false where no test
/// can without changing it.
[[nodiscard]] bool announceChange();

} // namespace lumora::contract
