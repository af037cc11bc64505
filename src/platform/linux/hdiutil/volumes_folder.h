#pragma once

#include "platform/posix/unique_fd.h"

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumora::platform::linux_backend {

/// A hidden folder beside the volumes, in which a volume is prepared or through which it disappears. Removed with all
/// it holds when this object ends, unless it has become a volume.
class AsideFolder {
  public:
    AsideFolder(int volumes, std::string name, posix_backend::UniqueFd held);
    AsideFolder(AsideFolder&& other) noexcept
        : volumes_(other.volumes_), name_(std::exchange(other.name_, {})), held_(std::move(other.held_)) {}
    AsideFolder& operator=(AsideFolder&& other) = delete;
    ~AsideFolder();

    [[nodiscard]] int descriptor() const noexcept { return held_.get(); }
    [[nodiscard]] const std::string& name() const noexcept { return name_; }

    /// Removes it now, so that a failure can be told. Throws DiskImageFailure.
    void remove();
    /// The folder now stands under another name: nothing is left to remove.
    void keep() noexcept { name_.clear(); }
    /// Another folder has taken its name, and is removed in its stead. @param held  that one, with its lock
    void standFor(posix_backend::UniqueFd held) noexcept { held_ = std::move(held); }

  private:
    int volumes_;
    std::string name_;
    posix_backend::UniqueFd held_; // holds the folder's lock, which says that a living process works in it
};

/// The folder that holds the volumes, /Volumes on a real system. What several processes must not do at once happens
/// under its lock, which lasts for a few system calls only; unpacking and removing happen outside.
class VolumesFolder {
  public:
    /// Throws DiskImageFailure if there is no such folder.
    explicit VolumesFolder(const std::filesystem::path& path);

    [[nodiscard]] int descriptor() const noexcept { return folder_.get(); }

    /// Locked until the result is destroyed. Throws DiskImageFailure if others hold it unreasonably long.
    [[nodiscard]] posix_backend::UniqueFd lock() const;

    /// Creates an aside folder for the volume. Call under the lock.
    [[nodiscard]] AsideFolder makeAside(const std::string& volume) const;

    /// The volume's folder, locked until the result is destroyed against everybody who copies something out of it; nothing
    /// while somebody does so. A volume that cannot be locked at all counts as one that nobody uses. Call under the lock.
    [[nodiscard]] std::optional<posix_backend::UniqueFd> claim(const std::string& volume) const;

    /// A free name for an aside folder of the volume.
    [[nodiscard]] static std::string asideName(const std::string& volume);

    /// The caller's aside folders whose processes have ended. Call under the lock, destroy outside.
    [[nodiscard]] std::vector<AsideFolder> takeAbandoned() const;

  private:
    std::filesystem::path path_;
    posix_backend::UniqueFd folder_;
};

} // namespace lumora::platform::linux_backend
