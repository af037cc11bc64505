#pragma once

#include <string>

namespace datacentre::agent {

/// The program that this process runs.
[[nodiscard]] std::string executablePath();

/// What stands behind a stream, by its descriptor: a path where it has one, "closed" when nothing does.
[[nodiscard]] std::string streamTarget(int descriptor);

} // namespace datacentre::agent
