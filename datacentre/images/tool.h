#pragma once

#include <string>
#include <vector>

namespace datacentre {

/// Runs a program, found by the search path, to its end. Throws std::runtime_error with its own words when it fails.
void runTool(const std::vector<std::string>& words);

} // namespace datacentre
