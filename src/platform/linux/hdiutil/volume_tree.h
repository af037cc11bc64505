#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

namespace lumora::platform::linux_backend {

enum class EntryKind { folder, file, link };

/// The names of a volume while it is unpacked: what may be created, and where its links lead. Pure bookkeeping, no
/// file is touched. Paths are relative to the mount point, without leading or trailing slash; the mount point itself is
/// the empty path.
class VolumeTree {
  public:
    /// How many folders deep an entry may lie.
    static constexpr std::size_t kMaximumDepth = 128;
    /// Leaves room for the mount point in front within the system's 4096 bytes.
    static constexpr std::size_t kMaximumPathBytes = 4000;

    /// Admits an entry. Throws DiskImageFailure if the path is absolute, contains "..", "." or empty components, is too
    /// long or too deep, was there before, or if its folder was not.
    void add(std::string_view path, EntryKind kind, std::string_view linkTarget = {});

    [[nodiscard]] std::size_t size() const noexcept { return entries_.size(); }

    /// Throws DiskImageFailure if following any link, and the links on its way, could leave the volume. Absolute
    /// targets always do. To be called when all entries are known.
    void checkLinks() const;

  private:
    struct Entry {
        EntryKind kind;
        std::string target;
    };

    [[nodiscard]] bool staysInside(std::string_view path, const Entry& link, std::size_t& stepsLeft) const;

    std::unordered_map<std::string, Entry> entries_;
};

} // namespace lumora::platform::linux_backend
