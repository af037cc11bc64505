#include "platform/linux/ports/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace lumora::platform::linux_backend {

namespace {

constexpr std::chrono::seconds kPatience{5};
constexpr std::chrono::milliseconds kRetry{5};

bool isLockedByAnother(int error) { return error == EWOULDBLOCK || error == EINTR; }

/// Some servers' file systems know no locks. Going on without one risks what two write at the same moment; not going on
/// would lose everything.
bool knowsNoLocks(int error) { return error == ENOLCK || error == ENOSYS || error == EOPNOTSUPP; }

} // namespace

FileLock::FileLock(const std::string& path)
    : file_(::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR)) {
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (file_ && ::flock(file_.get(), LOCK_EX | LOCK_NB) != 0) {
        if (knowsNoLocks(errno))
            return;
        if (!isLockedByAnother(errno) || std::chrono::steady_clock::now() > deadline)
            file_.reset();
        else
            std::this_thread::sleep_for(kRetry);
    }
}

} // namespace lumora::platform::linux_backend
