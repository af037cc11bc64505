#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace datacentre {

/// The folder with the disk images. Files are looked up anew each time, so they may be exchanged while the server runs.
class ImageShelf {
  public:
    /// An empty folder name stands for a data centre without images.
    explicit ImageShelf(std::filesystem::path folder) : folder_(std::move(folder)) {}

    [[nodiscard]] std::optional<std::string> bytes(const std::string& name) const;
    /// The version of the bundle inside; remembered as long as the file stays the same. Any thread.
    [[nodiscard]] std::optional<std::string> version(const std::string& name) const;

  private:
    struct Known {
        std::filesystem::file_time_type modified;
        std::uintmax_t size;
        std::optional<std::string> version;
    };

    std::filesystem::path folder_;
    mutable std::mutex mutex_;
    mutable std::map<std::string, Known> known_;
};

} // namespace datacentre
