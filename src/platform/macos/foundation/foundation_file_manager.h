#pragma once

#include "platform/file_manager.h"
#include "platform/posix/folder_hold.h"

namespace lumora::platform::macos_backend {

/// `NSFileManager`, and `NSFileHandle` for files that stay the same file.
class FoundationFileManager final : public FileManager {
  public:
    std::string homeDirectory() override;
    std::string libraryDirectory() override;
    bool fileExists(const std::string& path) override;
    Result<void> createDirectoryWithIntermediates(const std::string& path) override;
    Result<void> copyItem(const std::string& source, const std::string& destination) override;
    Result<void> removeItem(const std::string& path) override;
    Result<void> createFile(const std::string& path, std::string_view contents,
                            const FileAttributes& attributes) override;
    Result<std::string> readFile(const std::string& path) override;
    Result<void> overwriteFile(const std::string& path, std::string_view contents) override;
    Result<std::uint64_t> fileSize(const std::string& path) override;
    Result<void> truncateFile(const std::string& path) override;
    std::shared_ptr<void> holdFolder(const std::string& path) override {
        return posix_backend::holdFolder(path);
    }
};

} // namespace lumora::platform::macos_backend
