#include "platform/posix/temporary_sibling.h"

#include "platform/posix/abandoned_entries.h"
#include "platform/posix/tree_removal.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <random>
#include <string_view>

namespace lumora::platform::posix_backend {

namespace {

constexpr std::string_view kPrefix = ".lumora-";
constexpr int kAttempts = 100; // each fails only when another process sweeps the folder at that very moment
constexpr mode_t kPermissions = 07777;
constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

std::string newName() {
    static std::atomic<unsigned> count = 0;
    static const unsigned salt = std::random_device{}();
    return fmt::format("{}{}-{:x}-{}", kPrefix, ::getpid(), salt, count++);
}

/// Takes the run of these characters, which must not be empty, from the text's beginning.
bool take(std::string_view& text, std::string_view characters) {
    const std::size_t length = std::min(text.find_first_not_of(characters), text.size());
    text.remove_prefix(length);
    return length > 0;
}

/// What newName makes, and nothing that a person would.
bool isSiblingName(std::string_view name) {
    if (!name.starts_with(kPrefix))
        return false;
    name.remove_prefix(kPrefix.size());
    const auto dash = [&name] { return name.starts_with('-') && (name.remove_prefix(1), true); };
    return take(name, "0123456789") && dash() && take(name, "0123456789abcdef") && dash() &&
           take(name, "0123456789") && name.empty();
}

/// Up to and with the last slash before the entry's name; empty in the current folder.
std::string folderOf(const std::string& path) {
    const std::size_t end = path.find_last_not_of('/');
    const std::size_t slash = end == std::string::npos ? std::string::npos : path.rfind('/', end);
    return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

int renameIfFree(const std::string& from, const std::string& to) {
#ifdef __APPLE__
    const int failed = ::renamex_np(from.c_str(), to.c_str(), RENAME_EXCL);
#else
    const int failed = ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
#endif
    if (failed == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP)
        return errno;
    // A file system without that operation: look, then rename.
    struct stat status {};
    if (::lstat(to.c_str(), &status) == 0)
        return EEXIST;
    return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

} // namespace

TemporarySibling::TemporarySibling(const std::string& destination)
    : folder_(folderOf(destination)), destination_(destination), path_(folder_ + newName()) {
    removeAbandonedEntries(folder_.empty() ? "." : folder_, isSiblingName);
}

TemporarySibling::~TemporarySibling() {
    if (stands_) // what cannot be removed now, a later sibling removes
        static_cast<void>(removeTree(path_));
}

template <class Create>
int TemporarySibling::createHeld(Create create) {
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (const int error = create(path_.c_str()); error != 0) {
            errno = error;
            return -1;
        }
        if (held_ && holdNewEntry(held_.get(), path_)) {
            stands_ = true;
            return held_.get();
        }
        path_ = folder_ + newName();
    }
    errno = EBUSY;
    return -1;
}

int TemporarySibling::createFile(mode_t mode) {
    return createHeld([this, mode](const char* path) {
        held_.reset(::open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
        return held_ ? 0 : errno;
    });
}

int TemporarySibling::createFolder() {
    return createHeld([this](const char* path) {
        if (::mkdir(path, S_IRWXU) != 0)
            return errno;
        held_.reset(::open(path, kFolderFlags));
        if (held_ || errno == ENOENT) // gone already: no more ours than one that another has locked
            return 0;
        const int error = errno;
        ::rmdir(path);
        return error;
    });
}

int TemporarySibling::createLink(const std::string& target) {
    if (::symlink(target.c_str(), path_.c_str()) != 0)
        return errno;
    stands_ = true;
    return 0;
}

int TemporarySibling::placeIfFree() {
    const int error = renameIfFree(path_, destination_);
    if (error == 0)
        stands_ = false;
    return error;
}

int TemporarySibling::placeInsideIfFree() {
    // A folder goes from one folder to another only while its own user may write in it.
    const UniqueFd folder(::open(inside().c_str(), kFolderFlags));
    struct stat status {};
    const bool isReadOnly = folder && ::fstat(folder.get(), &status) == 0 && (status.st_mode & S_IWUSR) == 0;
    if (isReadOnly)
        ::fchmod(folder.get(), S_IRWXU);
    const int error = renameIfFree(inside(), destination_);
    if (isReadOnly)
        ::fchmod(folder.get(), status.st_mode & kPermissions);
    return error;
}

int TemporarySibling::place() {
    if (::rename(path_.c_str(), destination_.c_str()) != 0)
        return errno;
    stands_ = false;
    return 0;
}

int TemporarySibling::takeAway() {
    // Locked as soon as it stands here: not everything can be, and then at worst two remove it.
    held_.reset(::open(destination_.c_str(), kFolderFlags));
    if (held_)
        static_cast<void>(::flock(held_.get(), LOCK_EX | LOCK_NB));
    if (::rename(destination_.c_str(), path_.c_str()) != 0)
        return errno;
    stands_ = true;
    return 0;
}

void TemporarySibling::giveBack() {
    if (renameIfFree(path_, destination_) == 0)
        stands_ = false;
}

} // namespace lumora::platform::posix_backend
