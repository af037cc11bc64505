#include "platform/linux/hdiutil/volumes_folder.h"

#include "platform/linux/hdiutil/failure.h"
#include "platform/linux/hdiutil/folder_listing.h"
#include "platform/linux/hdiutil/tree_removal.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <random>
#include <string_view>
#include <thread>
#include <utility>

namespace lumora::platform::linux_backend {
namespace {

using posix_backend::UniqueFd;

constexpr auto kLockPatience = std::chrono::seconds(30);
constexpr auto kLockPause = std::chrono::milliseconds(5);
constexpr std::string_view kAsideMark = ".aside-";
constexpr std::size_t kAsideDigits = 16;
constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

/// ".NAME.aside-0123456789abcdef"
bool isAsideName(std::string_view name) {
    if (name.size() < 2 + kAsideMark.size() + kAsideDigits || name.front() != '.')
        return false;
    const auto digits = name.substr(name.size() - kAsideDigits);
    name.remove_suffix(kAsideDigits);
    return name.ends_with(kAsideMark) &&
           digits.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

} // namespace

AsideFolder::AsideFolder(int volumes, std::string name, UniqueFd held)
    : volumes_(volumes), name_(std::move(name)), held_(std::move(held)) {}

AsideFolder::~AsideFolder() {
    try {
        remove();
    } catch (const DiskImageFailure&) {
        // Whatever ends here has its own outcome to tell; the next mount tries again.
        keep();
    }
}

void AsideFolder::remove() {
    if (!name_.empty()) {
        removeTree(volumes_, name_);
        keep();
    }
}

VolumesFolder::VolumesFolder(const std::filesystem::path& path)
    : path_(path), folder_(::open(path.c_str(), kFolderFlags)) {
    if (!folder_)
        throwErrno("cannot open " + printable(path_.string()));
}

UniqueFd VolumesFolder::lock() const {
    // Opened anew: the lock belongs to the open file, and one process may mount on several threads.
    UniqueFd held(::openat(folder_.get(), ".", kFolderFlags));
    if (!held)
        throwErrno("cannot open " + printable(path_.string()));
    const auto deadline = std::chrono::steady_clock::now() + kLockPatience;
    while (::flock(held.get(), LOCK_EX | LOCK_NB) != 0) {
        if ((errno != EWOULDBLOCK && errno != EINTR) || std::chrono::steady_clock::now() > deadline)
            throwErrno("cannot lock " + printable(path_.string()));
        std::this_thread::sleep_for(kLockPause);
    }
    return held;
}

std::optional<UniqueFd> VolumesFolder::claim(const std::string& volume) const {
    UniqueFd folder(::openat(folder_.get(), volume.c_str(), kFolderFlags | O_NOFOLLOW));
    if (folder && ::flock(folder.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return std::nullopt;
    return folder;
}

std::string VolumesFolder::asideName(const std::string& volume) {
    std::random_device random;
    return fmt::format(".{}{}{:08x}{:08x}", volume, kAsideMark, random(), random());
}

AsideFolder VolumesFolder::makeAside(const std::string& volume) const {
    std::string name = asideName(volume);
    if (::mkdirat(folder_.get(), name.c_str(), S_IRWXU) != 0)
        throwErrno("cannot write to " + printable(path_.string()));
    AsideFolder aside(folder_.get(), name,
                      UniqueFd(::openat(folder_.get(), name.c_str(), kFolderFlags | O_NOFOLLOW)));
    if (aside.descriptor() < 0 || ::flock(aside.descriptor(), LOCK_EX | LOCK_NB) != 0)
        throwErrno("cannot write to " + printable(path_.string()));
    return aside;
}

std::vector<AsideFolder> VolumesFolder::takeAbandoned() const {
    std::vector<AsideFolder> abandoned;
    for (std::string& name : listFolder(folder_.get())) {
        if (!isAsideName(name))
            continue;
        struct stat attributes {};
        if (::fstatat(folder_.get(), name.c_str(), &attributes, AT_SYMLINK_NOFOLLOW) != 0 ||
            !S_ISDIR(attributes.st_mode) || attributes.st_uid != ::geteuid())
            continue;
        UniqueFd held(::openat(folder_.get(), name.c_str(), kFolderFlags | O_NOFOLLOW));
        if (held && ::flock(held.get(), LOCK_EX | LOCK_NB) == 0)
            abandoned.emplace_back(folder_.get(), std::move(name), std::move(held));
    }
    return abandoned;
}

} // namespace lumora::platform::linux_backend
