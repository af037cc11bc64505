#include "platform/posix/posix_standard_streams.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace lumora::platform::posix_backend {

namespace {

constexpr std::size_t kOutput = 1;
constexpr std::size_t kError = 2;
constexpr int kNoTimeout = -1;
constexpr mode_t kNewFileMode = 0666; // as fopen creates: the umask takes its part

// Puts the descriptor's file under the number if that is free; a number that is taken stays untouched.
bool claimNumber(int descriptor, int number) {
    const int got = ::fcntl(descriptor, F_DUPFD, number); // the lowest free one from there on
    if (got >= 0 && got != number)
        ::close(got);
    return got == number;
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

void writeWhole(int number, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(number, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            pollfd ready{number, POLLOUT, 0};
            if (::poll(&ready, 1, kNoTimeout) < 0 && errno != EINTR)
                return;
        } else if (errno != EINTR) {
            return; // a full disk or a vanished reader: the message is lost, the application goes on
        }
    }
}

} // namespace

PosixStandardStreams::PosixStandardStreams()
    : null_(openNullAboveStreams()), streams_{{{stdin, STDIN_FILENO, STDIN_FILENO},
                                               {stdout, STDOUT_FILENO, STDOUT_FILENO},
                                               {stderr, STDERR_FILENO, STDERR_FILENO}}} {
    std::setvbuf(stdout, nullptr, _IONBF, 0);
}

void PosixStandardStreams::writeError(std::string_view text) { write(kError, text); }

void PosixStandardStreams::writeOutput(std::string_view text) { write(kOutput, text); }

void PosixStandardStreams::write(std::size_t index, std::string_view text) {
    const std::lock_guard lock(mutex_);
    if (const int number = streams_[index].writeTo; number >= 0)
        writeWhole(number, text);
}

void PosixStandardStreams::withWritersHeld(const std::function<void()>& section) {
    const std::lock_guard lock(mutex_);
    section();
}

void PosixStandardStreams::reopenAll(const std::string& path) {
    const std::lock_guard lock(mutex_);
    // freopen closes a stream before it knows whether the path opens. Asking first keeps the usual failures
    // (missing folder, no rights, full disk) from ever closing one.
    const UniqueFd probe(::open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, kNewFileMode));
    for (Stream& stream : streams_) {
        if (!probe || !reopen(stream, path))
            hold(stream);
    }
}

bool PosixStandardStreams::reopen(Stream& stream, const std::string& path) const {
    if (std::freopen(path.c_str(), "a+", stream.file) == nullptr) {
        // The number was closed. Another thread may have taken it already and must not be disturbed then.
        stream.ownsNumber = claimNumber(null_.get(), stream.number);
        return false;
    }
    std::setvbuf(stream.file, nullptr, _IONBF, 0);

    stream.writeTo = ::fileno(stream.file);
    if (stream.writeTo == stream.number)
        return true;
    // The stream comes back from a failure that closed it, under another number.
    if (stream.ownsNumber)
        stream.ownsNumber = ::dup2(stream.writeTo, stream.number) == stream.number;
    else
        stream.ownsNumber = claimNumber(stream.writeTo, stream.number);
    if (stream.ownsNumber)
        stream.writeTo = stream.number;
    return true;
}

void PosixStandardStreams::hold(Stream& stream) const {
    stream.writeTo = -1;
    if (stream.ownsNumber)
        ::dup2(null_.get(), stream.number);
    if (const int number = ::fileno(stream.file); number >= 0 && number != stream.number)
        ::dup2(null_.get(), number);
}

} // namespace lumora::platform::posix_backend
