#pragma once

#include <functional>
#include <string>

namespace lumora::hand {

using Answer = std::function<void(const std::string&)>;

// Listens on a local socket at the path, in place of whatever stands there, and hands each connection's first line on, with the
// way to answer it: once, which ends the connection. Returns only when it cannot listen. Any thread.
void serveLines(const std::string& path,
                const std::function<void(const std::string&, const Answer&)>& handle);

} // namespace lumora::hand
