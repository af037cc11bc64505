#include "platform/linux/ports/file_contents.h"

#include "platform/posix/posix_files.h"

#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <vector>

namespace lumora::platform::linux_backend {

namespace {

using posix_backend::writeAll;

constexpr std::size_t kKernelChunk = 1U << 30U;
constexpr std::size_t kMemoryChunk = 256U << 10U;

// Ends at the end of the file or at the first refusal; whatever is left is copied through memory.
void copyInsideKernel(int from, int to) {
    while (::copy_file_range(from, nullptr, to, nullptr, kKernelChunk, 0) > 0) {
    }
}

int copyThroughMemory(int from, int to) {
    std::vector<char> chunk(kMemoryChunk);
    for (;;) {
        const ssize_t count = ::read(from, chunk.data(), chunk.size());
        if (count == 0)
            return 0;
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return errno;
        if (const int error = writeAll(to, {chunk.data(), static_cast<std::size_t>(count)}); error != 0)
            return error;
    }
}

} // namespace

int copyContents(int from, int to) {
    if (::ioctl(to, FICLONE, from) == 0)
        return 0;
    copyInsideKernel(from, to);
    return copyThroughMemory(from, to);
}

} // namespace lumora::platform::linux_backend
