#pragma once

#include "platform/linux/ports/home_folder.h"
#include "platform/linux/ports/volumes.h"
#include "platform/posix/posix_files.h"

namespace lumora::platform::linux_backend {

/// FileManager on the kernel's file interface. Every path is first resolved by the home folder's rule for letter case.
class LinuxFileManager final : public posix_backend::PosixFiles {
  public:
    /// @param volumes  the folder of the volumes
    explicit LinuxFileManager(HomeFolder home, std::string volumes = kVolumesFolder);

    std::string homeDirectory() override;
    std::string libraryDirectory() override;
    bool fileExists(const std::string& path) override;
    Result<void> createDirectoryWithIntermediates(const std::string& path) override;

    /// Takes nothing out of a volume that another user has put into the folder of the volumes, and keeps the volume that
    /// it takes something out of from being detached meanwhile. A lone file's copy in a folder that everybody writes, as
    /// /tmp, is its owner's alone to change.
    Result<void> copyItem(const std::string& source, const std::string& destination) override;

  private:
    [[nodiscard]] Result<std::string> resolved(const std::string& path) const override;
    void protectCompletely(const std::string&) override {} // its mode alone protects it

    const HomeFolder home_;
    const std::string volumes_;
};

} // namespace lumora::platform::linux_backend
