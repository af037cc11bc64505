#pragma once

#include <unistd.h>

#include <utility>

namespace lumora::platform::linux_backend {

/// Owns a POSIX descriptor; closing it also gives up the lock that it may hold.
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) noexcept : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~FileDescriptor() {
        if (descriptor_ >= 0)
            ::close(descriptor_);
    }

    [[nodiscard]] int get() const noexcept { return descriptor_; }
    [[nodiscard]] int release() noexcept { return std::exchange(descriptor_, -1); }
    [[nodiscard]] explicit operator bool() const noexcept { return descriptor_ >= 0; }

  private:
    int descriptor_ = -1;
};

} // namespace lumora::platform::linux_backend
