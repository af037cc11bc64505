#include "agent/process_facts.h"

#include <fcntl.h>
#include <mach-o/dyld.h>
#include <sys/param.h>

#include <array>
#include <cerrno>
#include <cstdint>

namespace datacentre::agent {

std::string executablePath() {
    std::array<char, MAXPATHLEN> path{};
    auto size = static_cast<std::uint32_t>(path.size());
    return _NSGetExecutablePath(path.data(), &size) == 0 ? path.data() : "unknown";
}

std::string streamTarget(int descriptor) {
    std::array<char, MAXPATHLEN> path{};
    if (::fcntl(descriptor, F_GETPATH, path.data()) == 0)
        return path.data();
    return errno == EBADF ? "closed" : "without a path";
}

} // namespace datacentre::agent
