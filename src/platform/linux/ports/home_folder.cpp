#include "platform/linux/ports/home_folder.h"

#include <fmt/format.h>
#include <utf8proc.h>

#include <dirent.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace lumora::platform::linux_backend {

namespace {

std::string usersHome() {
    if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0')
        return home;
    std::array<char, 16384> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr)
        return found->pw_dir;
    return "/";
}

std::vector<std::string_view> componentsOf(std::string_view path) {
    std::vector<std::string_view> components;
    while (!path.empty()) {
        const std::size_t slash = path.find('/');
        if (slash != 0)
            components.push_back(path.substr(0, slash));
        path.remove_prefix(slash == std::string_view::npos ? path.size() : slash + 1);
    }
    return components;
}

// Names that differ in case only, or in how an accented letter is composed, fold to the same text.
std::string folded(std::string_view name) {
    utf8proc_uint8_t* mapped = nullptr;
    const utf8proc_ssize_t length = utf8proc_map(
        reinterpret_cast<const utf8proc_uint8_t*>(name.data()), static_cast<utf8proc_ssize_t>(name.size()),
        &mapped, static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE | UTF8PROC_CASEFOLD));
    if (length < 0)
        return std::string(name); // not UTF-8: only its exact bytes name it
    const std::unique_ptr<utf8proc_uint8_t, void (*)(void*)> owner(mapped, &std::free);
    return {reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(length)};
}

bool standsAt(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

// The first in byte order, so that the answer does not depend on the folder's own order; empty when none matches.
std::string entryWhateverItsCase(const std::string& folder, std::string_view name) {
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.c_str()), &::closedir);
    if (!entries)
        return {};
    const std::string wanted = folded(name);
    std::string best;
    while (const dirent* entry = ::readdir(entries.get())) {
        if (folded(entry->d_name) == wanted && (best.empty() || entry->d_name < best))
            best = entry->d_name;
    }
    return best;
}

} // namespace

HomeFolder::HomeFolder() : HomeFolder(usersHome()) {}

HomeFolder::HomeFolder(std::string path) : path_(std::move(path)) {
    while (path_.size() > 1 && path_.ends_with('/'))
        path_.pop_back();
}

std::string HomeFolder::resolve(const std::string& path) const {
    const std::vector<std::string_view> home = componentsOf(path_);
    const std::vector<std::string_view> wanted = componentsOf(path);
    if (!path.starts_with('/') || wanted.size() <= home.size() ||
        !std::equal(home.begin(), home.end(), wanted.begin()))
        return path;

    std::string resolved = path_ == "/" ? "" : path_;
    bool exists = true; // a component that is missing ends the search: what follows is new
    for (std::size_t index = home.size(); index < wanted.size(); ++index) {
        std::string candidate = fmt::format("{}/{}", resolved, wanted[index]);
        if (exists && !standsAt(candidate)) {
            const std::string found = entryWhateverItsCase(resolved.empty() ? "/" : resolved, wanted[index]);
            exists = !found.empty();
            if (exists)
                candidate = fmt::format("{}/{}", resolved, found);
        }
        resolved = std::move(candidate);
    }
    // A trailing slash asks for a folder.
    return path.ends_with('/') ? resolved + '/' : resolved;
}

} // namespace lumora::platform::linux_backend
