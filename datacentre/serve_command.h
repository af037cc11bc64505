#pragma once

#include "command_line.h"

namespace datacentre {

/// Serves until SIGTERM or SIGINT. Throws std::exception with a text for the terminal when it cannot begin.
void serve(const CommandLine& words);

} // namespace datacentre
