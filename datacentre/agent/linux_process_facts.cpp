#include "agent/process_facts.h"

#include <filesystem>
#include <system_error>

namespace datacentre::agent {

namespace {

std::string linkTarget(const std::string& link) {
    std::error_code closed;
    const auto target = std::filesystem::read_symlink(link, closed);
    return closed ? "closed" : target.string();
}

} // namespace

std::string executablePath() { return linkTarget("/proc/self/exe"); }

std::string streamTarget(int descriptor) { return linkTarget("/proc/self/fd/" + std::to_string(descriptor)); }

} // namespace datacentre::agent
