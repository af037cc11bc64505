#include "server/image_shelf.h"

#include "images/image_version.h"

#include <fstream>
#include <sstream>
#include <system_error>

namespace datacentre {

std::optional<std::string> ImageShelf::bytes(const std::string& name) const {
    if (folder_.empty())
        return std::nullopt;
    const std::ifstream input(folder_ / name, std::ios::binary);
    if (!input)
        return std::nullopt;
    return (std::ostringstream() << input.rdbuf()).str();
}

std::optional<std::string> ImageShelf::version(const std::string& name) const {
    if (folder_.empty())
        return std::nullopt;
    const auto file = folder_ / name;
    std::error_code missing;
    const auto modified = std::filesystem::last_write_time(file, missing);
    const auto size = std::filesystem::file_size(file, missing);
    if (missing)
        return std::nullopt;
    const std::lock_guard lock(mutex_);
    const auto found = known_.find(name);
    if (found != known_.end() && found->second.modified == modified && found->second.size == size)
        return found->second.version;
    auto version = imageVersion(file);
    known_.insert_or_assign(name, Known{modified, size, version});
    return version;
}

} // namespace datacentre
