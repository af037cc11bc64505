#include "tree_picture.h"

#include "image_maker.h"

#include <fmt/format.h>

#include <sys/stat.h>

#include <algorithm>
#include <functional>
#include <stdexcept>

namespace lumora::testing {
namespace {

std::string pictureOfEntry(const std::filesystem::path& entry) {
    struct stat attributes {};
    if (::lstat(entry.c_str(), &attributes) != 0) {
        throw std::runtime_error("cannot examine " + entry.string());
    }
    std::string contents;
    if (S_ISLNK(attributes.st_mode)) {
        contents = std::filesystem::read_symlink(entry).string();
    } else if (S_ISREG(attributes.st_mode)) {
        const std::string bytes = readFile(entry);
        contents = fmt::format("{} bytes, {:x}", bytes.size(), std::hash<std::string>{}(bytes));
    }
    return fmt::format("{:o} at {}: {}", attributes.st_mode, attributes.st_mtim.tv_sec, contents);
}

} // namespace

TreePicture pictureOf(const std::filesystem::path& folder) {
    TreePicture picture{{".", pictureOfEntry(folder)}};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        picture.emplace(entry.path().lexically_relative(folder).string(), pictureOfEntry(entry.path()));
    }
    return picture;
}

std::vector<std::string> namesIn(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace lumora::testing
