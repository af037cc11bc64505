#include "platform/posix/folder_hold.h"

#include "platform/posix/unique_fd.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace lumora::platform::posix_backend {

namespace {

constexpr std::chrono::seconds kPatience{10};
constexpr std::chrono::milliseconds kRetry{5};

} // namespace

std::shared_ptr<void> holdFolder(const std::string& path) {
    auto folder = std::make_shared<UniqueFd>(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (*folder && ::flock(folder->get(), LOCK_EX | LOCK_NB) != 0) {
        if ((errno != EWOULDBLOCK && errno != EINTR) || std::chrono::steady_clock::now() > deadline)
            return nullptr;
        std::this_thread::sleep_for(kRetry);
    }
    return *folder ? folder : nullptr;
}

} // namespace lumora::platform::posix_backend
