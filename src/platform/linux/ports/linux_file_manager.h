#pragma once

#include "platform/file_manager.h"
#include "platform/linux/ports/home_folder.h"

namespace lumora::platform::linux_backend {

/// FileManager on the kernel's file interface. Every path is first resolved by the home folder's rule for letter case.
class LinuxFileManager final : public FileManager {
  public:
    explicit LinuxFileManager(HomeFolder home);

    std::string homeDirectory() override;
    std::string libraryDirectory() override;
    bool fileExists(const std::string& path) override;
    Result<void> createDirectoryWithIntermediates(const std::string& path) override;

    /// Takes nothing out of a volume that another user has put into the folder of the volumes. A lone file's copy in a
    /// folder that everybody writes, as /tmp, is its owner's alone to change.
    Result<void> copyItem(const std::string& source, const std::string& destination) override;
    Result<void> removeItem(const std::string& path) override;

    /// Made aside with its final mode and renamed into place: no one sees it half written or more open than it shall
    /// be, and a link planted at the path is replaced, not followed.
    Result<void> createFile(const std::string& path, std::string_view contents,
                            const FileAttributes& attributes) override;

    Result<std::string> readFile(const std::string& path) override;
    Result<void> overwriteFile(const std::string& path, std::string_view contents) override;
    Result<std::uint64_t> fileSize(const std::string& path) override;
    Result<void> truncateFile(const std::string& path) override;
    std::shared_ptr<void> holdFolder(const std::string& path) override;

  private:
    [[nodiscard]] Result<std::string> resolved(const std::string& path) const;

    const HomeFolder home_;
};

} // namespace lumora::platform::linux_backend
