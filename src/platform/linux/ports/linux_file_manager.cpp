#include "platform/linux/ports/linux_file_manager.h"

#include "platform/linux/ports/file_tree_copy.h"
#include "platform/posix/posix_error.h"
#include "platform/posix/temporary_sibling.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <utility>

namespace lumora::platform::linux_backend {

namespace {

using posix_backend::posixError;
using posix_backend::TemporarySibling;

constexpr mode_t kDefaultFolderMode = 0777;

bool isFolder(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// Absent when the path does not lead anywhere.
std::string canonical(const std::string& path) {
    const std::unique_ptr<char, void (*)(void*)> real(::realpath(path.c_str(), nullptr), &std::free);
    return real ? std::string(real.get()) : std::string();
}

std::string parentOf(const std::string& path) {
    const std::size_t end = path.find_last_not_of('/');
    const std::size_t slash = end == std::string::npos ? std::string::npos : path.rfind('/', end);
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// The copy would grow into itself without end.
bool liesInside(const std::string& destination, const std::string& source) {
    const std::string folder = canonical(source);
    return !folder.empty() && (canonical(parentOf(destination)) + '/').starts_with(folder + '/');
}

} // namespace

LinuxFileManager::LinuxFileManager(HomeFolder home, std::string volumes)
    : home_(std::move(home)), volumes_(std::move(volumes)) {}

std::string LinuxFileManager::homeDirectory() { return home_.path(); }

std::string LinuxFileManager::libraryDirectory() { return home_.path() + "/Library"; }

Result<std::string> LinuxFileManager::resolved(const std::string& path) const {
    const auto place = PosixFiles::resolved(path);
    return place ? home_.resolve(place.value()) : place;
}

bool LinuxFileManager::fileExists(const std::string& path) {
    // The kernel finds no file under a name that ends in a slash; the product's home does, and support folders are
    // asked for that way.
    std::string name = path;
    while (name.size() > 1 && name.back() == '/')
        name.pop_back();
    const auto place = resolved(name);
    struct stat status {};
    return place && ::stat(place.value().c_str(), &status) == 0;
}

Result<void> LinuxFileManager::createDirectoryWithIntermediates(const std::string& path) {
    const auto place = resolved(path);
    if (!place)
        return place.error();
    const std::string& folder = place.value();
    for (std::size_t end = folder.find('/', 1);; end = folder.find('/', end + 1)) {
        const std::string prefix = folder.substr(0, end);
        if (::mkdir(prefix.c_str(), kDefaultFolderMode) != 0 && !isFolder(prefix))
            return posixError(errno == EEXIST ? ENOTDIR : errno, prefix);
        if (end == std::string::npos)
            return {};
    }
}

Result<void> LinuxFileManager::copyItem(const std::string& source, const std::string& destination) {
    const auto from = resolved(source);
    const auto to = resolved(destination);
    if (!from || !to)
        return from ? to.error() : from.error();
    const VolumeReading reading(from.value(), volumes_);
    if (reading.obstacle() != 0)
        return posixError(reading.obstacle(), source);

    struct stat status {};
    if (::lstat(from.value().c_str(), &status) != 0)
        return posixError(errno, source);
    if (S_ISDIR(status.st_mode) && liesInside(to.value(), from.value()))
        return posixError(EINVAL, destination);
    if (::lstat(to.value().c_str(), &status) == 0)
        return posixError(EEXIST, destination);

    TemporarySibling aside(to.value());
    Result<void> copied = copyTree(from.value(), aside);
    if (copied) {
        if (const int error = aside.placeIfFree(); error != 0)
            copied = posixError(error, destination);
    }
    return copied;
}

} // namespace lumora::platform::linux_backend
