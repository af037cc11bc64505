#include "platform/linux/hdiutil/volume_tree.h"

#include "platform/linux/hdiutil/failure.h"

#include <fmt/format.h>

#include <climits>
#include <vector>

namespace lumora::platform::linux_backend {
namespace {

constexpr std::size_t kMaximumLinksFollowed = 40; // as the kernel does
constexpr std::size_t kMaximumSteps = 4'000'000;  // over all links of a volume: far beyond any real one

[[nodiscard]] std::string_view takeComponent(std::string_view& path) {
    const auto slash = path.find('/');
    const auto component = path.substr(0, slash);
    path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
    return component;
}

[[nodiscard]] std::string_view folderOf(std::string_view path) {
    const auto slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

void checkShape(std::string_view path) {
    bool sound = !path.empty() && path.size() <= VolumeTree::kMaximumPathBytes && path.back() != '/';
    std::size_t depth = 0;
    for (std::string_view rest = path; sound && !rest.empty();) {
        const auto component = takeComponent(rest);
        sound = !component.empty() && component != "." && component != ".." && component.size() <= NAME_MAX &&
                ++depth <= VolumeTree::kMaximumDepth;
    }
    if (!sound) {
        throw DiskImageFailure(
            fmt::format("the image has an entry with the unusable path \"{}\"", printable(path)));
    }
}

} // namespace

void VolumeTree::add(std::string_view path, EntryKind kind, std::string_view linkTarget) {
    checkShape(path);
    if (const auto folder = folderOf(path); !folder.empty()) {
        const auto found = entries_.find(std::string(folder));
        if (found == entries_.end() || found->second.kind != EntryKind::folder) {
            throw DiskImageFailure(
                fmt::format("the image has no folder for its entry \"{}\"", printable(path)));
        }
    }
    if (kind == EntryKind::link && (linkTarget.empty() || linkTarget.size() >= PATH_MAX))
        throw DiskImageFailure(fmt::format("the image's link \"{}\" has no usable target", printable(path)));
    if (!entries_.emplace(path, Entry{kind, std::string(linkTarget)}).second)
        throw DiskImageFailure(fmt::format("the image has two entries named \"{}\"", printable(path)));
}

void VolumeTree::checkLinks() const {
    std::size_t stepsLeft = kMaximumSteps;
    for (const auto& [path, entry] : entries_) {
        if (entry.kind == EntryKind::link && !staysInside(path, entry, stepsLeft)) {
            throw DiskImageFailure(
                fmt::format("the image's link \"{}\" points out of the volume", printable(path)));
        }
    }
}

bool VolumeTree::staysInside(std::string_view path, const Entry& link, std::size_t& stepsLeft) const {
    std::string where(folderOf(path));
    // Targets still to be walked, the innermost last: a link on the way is walked before the rest behind it. Comparing
    // counts of ".." would not do, since a link can make a long path short.
    std::vector<std::string_view> pending{link.target};
    std::size_t linksFollowed = 1;
    if (link.target.front() == '/')
        return false;
    while (!pending.empty()) {
        if (stepsLeft-- == 0)
            throw DiskImageFailure("the image's links are too entangled");
        const auto component = takeComponent(pending.back());
        if (pending.back().empty())
            pending.pop_back();
        if (component.empty() || component == ".")
            continue;
        if (component == "..") {
            if (where.empty())
                return false;
            where.resize(folderOf(where).size());
            continue;
        }
        const std::size_t folderLength = where.size();
        where.append(where.empty() ? "" : "/").append(component);
        const auto found = entries_.find(where);
        if (found != entries_.end() && found->second.kind == EntryKind::link) {
            // A loop leads nowhere; no sound volume has one.
            if (found->second.target.front() == '/' || ++linksFollowed > kMaximumLinksFollowed)
                return false;
            where.resize(folderLength);
            pending.push_back(found->second.target);
        }
    }
    return true;
}

} // namespace lumora::platform::linux_backend
