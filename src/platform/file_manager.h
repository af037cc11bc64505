#pragma once

#include "platform/result.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace lumora::platform {

/// Attributes of a file at its creation.
struct FileAttributes {
    /// E.g. 0600, set before the first byte is written; absent: the umask's.
    std::optional<unsigned> posixPermissions;

    /// The strictest data-protection class; ignored where there is none.
    bool completeProtection = false;
};

/// The shared file-system service. Paths are text as the core joins them: doubled slashes are harmless.
/// Callable from any thread.
class FileManager {
  public:
    virtual ~FileManager() = default;

    /// The user's home folder, without a trailing slash.
    [[nodiscard]] virtual std::string homeDirectory() = 0;

    /// The first path of the user's Library folder, without a trailing slash.
    [[nodiscard]] virtual std::string libraryDirectory() = 0;

    /// Whether anything stands at the path (a dangling link does not count).
    [[nodiscard]] virtual bool fileExists(const std::string& path) = 0;

    /// Creates the folder and its missing parents; success also when it stands already.
    virtual Result<void> createDirectoryWithIntermediates(const std::string& path) = 0;

    /// Copies a file, link, folder or bundle whole: modes, links, times and extended attributes.
    /// Refuses an existing destination; on failure nothing is left at the destination.
    virtual Result<void> copyItem(const std::string& source, const std::string& destination) = 0;

    /// Removes a file, link or folder with all it holds; a link's target is never touched. A folder that may not be
    /// removed stays whole.
    virtual Result<void> removeItem(const std::string& path) = 0;

    /// Creates the file with these bytes, replacing a file that stands there.
    virtual Result<void> createFile(const std::string& path, std::string_view contents,
                                    const FileAttributes& attributes) = 0;

    /// The whole contents of a regular file.
    [[nodiscard]] virtual Result<std::string> readFile(const std::string& path) = 0;

    /// Writes over an existing file in place (same inode, not atomically).
    virtual Result<void> overwriteFile(const std::string& path, std::string_view contents) = 0;

    /// Size in bytes.
    [[nodiscard]] virtual Result<std::uint64_t> fileSize(const std::string& path) = 0;

    /// Cuts an existing file to no bytes, keeping the file itself.
    virtual Result<void> truncateFile(const std::string& path) = 0;

    /// Holds a folder against every other process that asks for it here, until the result is gone. Waits for its turn,
    /// some seconds at most, and is empty when it did not come. Keeps nobody from using the folder who does not ask.
    [[nodiscard]] virtual std::shared_ptr<void> holdFolder(const std::string& path) = 0;
};

} // namespace lumora::platform
