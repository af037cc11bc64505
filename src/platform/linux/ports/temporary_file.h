#pragma once

#include "platform/posix/unique_fd.h"

#include <string>
#include <string_view>

namespace lumora::platform::linux_backend {

/// A new file in the temporary folder that only the user may read; gone with its last owner. A process that is killed
/// leaves it; the same user's next one removes it.
class TemporaryFile {
  public:
    /// Opens it for writing; `isOpen` tells whether that worked.
    TemporaryFile();
    TemporaryFile(TemporaryFile&& other) noexcept;
    TemporaryFile& operator=(TemporaryFile&&) = delete;
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    [[nodiscard]] bool isOpen() const { return static_cast<bool>(file_); }
    [[nodiscard]] const std::string& path() const { return path_; }

    /// False when the bytes could not be written whole.
    [[nodiscard]] bool append(std::string_view bytes);

  private:
    std::string path_;
    posix_backend::UniqueFd file_;
};

} // namespace lumora::platform::linux_backend
