#pragma once

#include "platform/file_manager.h"

namespace lumora::platform::posix_backend {

/// Writes all of it, going on after interruptions and short writes. The result is an errno, 0 for success.
[[nodiscard]] int writeAll(int descriptor, std::string_view bytes);

/// What is done to the contents of single files, and every removal, alike on every system. Nothing waits for the other end
/// of a pipe.
class PosixFiles : public FileManager {
  public:
    /// Made aside with its final mode and renamed into place: no one sees it half written or more open than it shall
    /// be, and a link planted at the path is replaced, not followed.
    Result<void> createFile(const std::string& path, std::string_view contents,
                            const FileAttributes& attributes) final;

    Result<std::string> readFile(const std::string& path) final;
    Result<void> overwriteFile(const std::string& path, std::string_view contents) final;
    Result<std::uint64_t> fileSize(const std::string& path) final;
    Result<void> truncateFile(const std::string& path) final { return overwriteFile(path, ""); }

    /// A folder disappears in one step, or stays as it is when something in it cannot be removed. Folders of the user's
    /// own that are read-only are opened up first.
    Result<void> removeItem(const std::string& path) final;

    std::shared_ptr<void> holdFolder(const std::string& path) final;

  protected:
    /// Where the system finds the path. One with a NUL in it is an error: the kernel would see a shorter one.
    [[nodiscard]] virtual Result<std::string> resolved(const std::string& path) const;

    /// Gives a file, empty as yet, the strictest data-protection class, where there are such classes.
    virtual void protectCompletely(const std::string& file) = 0;
};

} // namespace lumora::platform::posix_backend
