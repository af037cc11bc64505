#include "platform/linux/ports/temporary_sibling.h"

#include <fmt/format.h>

#include <unistd.h>

#include <atomic>
#include <random>

namespace lumora::platform::linux_backend {

std::string temporarySiblingOf(const std::string& path) {
    static std::atomic<unsigned> count = 0;
    static const unsigned salt = std::random_device{}();
    const std::size_t slash = path.find_last_not_of('/') == std::string::npos
                                  ? std::string::npos
                                  : path.rfind('/', path.find_last_not_of('/'));
    const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    return fmt::format("{}.lumora-{}-{:x}-{}", folder, ::getpid(), salt, count++);
}

} // namespace lumora::platform::linux_backend
