#pragma once

#include "platform/posix/posix_files.h"

namespace lumora::platform::macos_backend {

/// `NSFileManager`; what it leaves open in the course of a file's making or of a removal is POSIX.
class FoundationFileManager final : public posix_backend::PosixFiles {
  public:
    std::string homeDirectory() override;
    std::string libraryDirectory() override;
    bool fileExists(const std::string& path) override;
    Result<void> createDirectoryWithIntermediates(const std::string& path) override;
    Result<void> copyItem(const std::string& source, const std::string& destination) override;

  private:
    void protectCompletely(const std::string& file) override;
};

} // namespace lumora::platform::macos_backend
