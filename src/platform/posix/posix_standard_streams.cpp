#include "platform/posix/posix_standard_streams.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace lumora::platform::posix_backend {

namespace {

constexpr int kNoTimeout = -1;
constexpr mode_t kNewFileMode = 0666; // as fopen creates: the umask takes its part

// In one step, so that nobody else's file or socket gets the number meanwhile: freopen closes it first on some systems. The
// C library's stream knows the number alone, and follows.
bool putUnder(int number, int descriptor) {
    int result = -1;
    do
        result = ::dup2(descriptor, number);
    while (result < 0 && (errno == EINTR || errno == EBUSY));
    return result == number;
}

// A started process may lack streams; the next file or socket it opens would then take their numbers.
UniqueFd openNullAboveStreams() {
    int number = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    while (number >= 0 && number <= STDERR_FILENO)
        number = ::open("/dev/null", O_RDWR);
    if (number >= 0)
        ::fcntl(number, F_SETFD, FD_CLOEXEC);
    return UniqueFd(number);
}

/// How many bytes could not be written: on a full disk, or when the reader has vanished.
std::size_t writeWhole(int number, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(number, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            pollfd ready{number, POLLOUT, 0};
            if (::poll(&ready, 1, kNoTimeout) < 0 && errno != EINTR)
                break;
        } else if (errno != EINTR) {
            break;
        }
    }
    return text.size();
}

} // namespace

PosixStandardStreams::PosixStandardStreams() : null_(openNullAboveStreams()) {
    std::setvbuf(stdout, nullptr, _IONBF, 0);
}

void PosixStandardStreams::writeError(std::string_view text) { write(STDERR_FILENO, text); }

void PosixStandardStreams::writeOutput(std::string_view text) { write(STDOUT_FILENO, text); }

void PosixStandardStreams::write(int number, std::string_view text) {
    const std::lock_guard lock(mutex_);
    if (!isOpen_[static_cast<std::size_t>(number)])
        return;
    if (lineIsCut_ && writeWhole(number, "\n") != 0)
        return;
    // What could not be written is lost, the application goes on.
    const std::size_t lost = writeWhole(number, text);
    lineIsCut_ = lost > 0 && lost < text.size();
}

void PosixStandardStreams::withWritersHeld(const std::function<void()>& section) {
    const std::lock_guard lock(mutex_);
    section();
}

void PosixStandardStreams::reopenAll(const std::string& path) {
    const std::lock_guard lock(mutex_);
    const UniqueFd file(::open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, kNewFileMode));
    for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        bool& isOpen = isOpen_[static_cast<std::size_t>(number)];
        isOpen = file && putUnder(number, file.get());
        if (!isOpen)
            putUnder(number, null_.get());
    }
}

} // namespace lumora::platform::posix_backend
