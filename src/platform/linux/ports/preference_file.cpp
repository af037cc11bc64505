#include "platform/linux/ports/preference_file.h"

#include "platform/linux/ports/file_lock.h"
#include "platform/posix/posix_files.h"
#include "platform/posix/temporary_sibling.h"
#include "platform/posix/unique_fd.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <system_error>
#include <utility>

namespace lumora::platform::linux_backend {

namespace {

using posix_backend::TemporarySibling;
using posix_backend::UniqueFd;
using posix_backend::writeAll;

constexpr std::size_t kMaximumSize = 4 << 20; // real preference files have some kilobytes
constexpr int kMaximumDamagedFiles = 100;
constexpr mode_t kEveryonesFolderMode = 0755;
constexpr std::time_t kClockGranularity = 1; // seconds, generously: file systems' clocks tick in milliseconds

bool isSameTime(const timespec& a, const timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

/// Whether an error tells of the moment rather than of the file: short of descriptors or memory, a server out of reach.
bool isPassing(int error) {
    constexpr std::array kPassing{EMFILE, ENFILE, ENOMEM, EINTR, EAGAIN, EIO, ESTALE, ETIMEDOUT};
    return std::find(kPassing.begin(), kPassing.end(), error) != kPassing.end();
}

/// Makes the folder and what is missing above it. For a file that everyone reads, everyone may enter them, whatever the
/// umask of the administrator who was first.
bool makeFolders(const std::filesystem::path& folder, bool forEveryone) {
    std::error_code failed;
    if (std::filesystem::is_directory(folder, failed))
        return true;
    if (folder.has_parent_path() && !makeFolders(folder.parent_path(), forEveryone))
        return false;
    if (::mkdir(folder.c_str(), S_IRWXU | S_IRWXG | S_IRWXO) != 0)
        return errno == EEXIST && std::filesystem::is_directory(folder, failed);
    return !forEveryone || ::chmod(folder.c_str(), kEveryonesFolderMode) == 0;
}

/// Absent, with errno set, when it cannot be read whole or is no regular file of a sane size.
std::optional<std::string> readWhole(int descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0)
        return std::nullopt;
    if (!S_ISREG(status.st_mode) || status.st_size > off_t{kMaximumSize}) {
        errno = EFBIG;
        return std::nullopt;
    }
    std::string bytes;
    std::array<char, 16384> chunk{};
    for (;;) {
        const ssize_t count = ::read(descriptor, chunk.data(), chunk.size());
        if (count > 0)
            bytes.append(chunk.data(), static_cast<std::size_t>(count));
        else if (count == 0)
            return bytes;
        else if (errno != EINTR)
            return std::nullopt;
    }
}

} // namespace

bool PreferenceFile::Stamp::operator==(const Stamp& other) const {
    return exists == other.exists && device == other.device && inode == other.inode && size == other.size &&
           isSameTime(modified, other.modified) && isSameTime(changed, other.changed);
}

PreferenceFile::PreferenceFile(std::string path, mode_t mode, PropertyListSerialization& propertyLists)
    : path_(std::move(path)), mode_(mode), propertyLists_(propertyLists) {}

std::optional<PropertyListValue> PreferenceFile::value(const std::string& key) {
    const std::lock_guard lock(mutex_);
    if (const auto entry = pending_.find(key); entry != pending_.end())
        return entry->second;
    const PropertyListDictionary& stored = current();
    const auto entry = stored.find(key);
    return entry == stored.end() ? std::nullopt : std::optional(entry->second);
}

void PreferenceFile::set(const std::string& key, const PropertyListValue& value) {
    const std::lock_guard lock(mutex_);
    pending_.insert_or_assign(key, value);
}

PreferenceFile::Stamp PreferenceFile::stampNow() const {
    struct stat status {};
    if (::stat(path_.c_str(), &status) != 0)
        return {};
    return {true, status.st_dev, status.st_ino, status.st_size, status.st_mtim, status.st_ctim};
}

PreferenceFile::Contents PreferenceFile::load() const {
    // Without waiting: someone may have put a pipe there.
    const UniqueFd file(::open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (!file && (errno == ENOENT || errno == ENOTDIR))
        return {};
    const auto bytes = file ? readWhole(file.get()) : std::nullopt;
    if (!bytes)
        return {{}, isPassing(errno) ? State::unreadableNow : State::damaged};
    const auto list = propertyLists_.parse(*bytes);
    const auto* dictionary = list ? list.value().as<PropertyListDictionary>() : nullptr;
    return dictionary == nullptr ? Contents{{}, State::damaged} : Contents{*dictionary};
}

const PropertyListDictionary& PreferenceFile::current() {
    const Stamp stamp =
        stampNow(); // before reading: a change meanwhile makes the stamp old, never the contents
    if (stamp_ && *stamp_ == stamp)
        return cached_;
    Contents contents = load();
    if (contents.state == State::unreadableNow) {
        stamp_.reset();
        return cached_;
    }
    cached_ = std::move(contents.dictionary);
    // Two writes within one tick of the file system's clock can leave equal stamps, so a young file is not trusted.
    if (stamp.exists && std::time(nullptr) - stamp.changed.tv_sec <= kClockGranularity)
        stamp_.reset();
    else
        stamp_ = stamp;
    return cached_;
}

bool PreferenceFile::flush() {
    const std::lock_guard lock(mutex_);
    if (pending_.empty())
        return true;
    const std::filesystem::path path(path_);
    if (!makeFolders(path.parent_path(), (mode_ & S_IROTH) != 0))
        return false;
    const FileLock processes(path.parent_path() / ("." + path.filename().string() + ".lock"));
    if (!processes.isHeld())
        return false;

    Contents contents = load();
    if (contents.state == State::unreadableNow)
        return false;
    const bool complete = mergeInto(contents.dictionary);
    const auto bytes = bytesOf(contents.dictionary);
    if (!bytes || (contents.state == State::damaged && !moveDamagedFileAside()) || !write(*bytes))
        return false;
    stamp_.reset();
    if (complete)
        pending_.clear();
    return complete;
}

/// The file's bytes; absent when it could not be read again.
std::optional<std::string> PreferenceFile::bytesOf(const PropertyListDictionary& dictionary) const {
    auto xml = propertyLists_.serializeXml(dictionary);
    if (!xml || xml.value().size() > kMaximumSize || !propertyLists_.parse(xml.value()))
        return std::nullopt;
    return std::move(xml.value());
}

// A text that XML cannot carry, or an enormous one, must not keep the other values from the disk; it lives as long as the
// process.
bool PreferenceFile::mergeInto(PropertyListDictionary& dictionary) const {
    bool complete = true;
    for (const auto& [key, value] : pending_) {
        PropertyListDictionary changed = dictionary;
        changed.insert_or_assign(key, value);
        if (bytesOf(changed))
            dictionary = std::move(changed);
        else
            complete = false;
    }
    return complete;
}

bool PreferenceFile::moveDamagedFileAside() const {
    for (int number = 1; number <= kMaximumDamagedFiles; ++number) {
        const std::string aside = fmt::format("{}.damaged-{}", path_, number);
        if (::renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, aside.c_str(), RENAME_NOREPLACE) == 0)
            return true;
        if (errno != EEXIST)
            return false;
    }
    return false;
}

bool PreferenceFile::write(const std::string& bytes) const {
    TemporarySibling aside(path_);
    const int file = aside.createFile(S_IRUSR | S_IWUSR);
    if (file < 0 || ::fchmod(file, mode_) != 0 || writeAll(file, bytes) != 0 || ::fsync(file) != 0 ||
        aside.place() != 0)
        return false;
    // The new name is on disk only with its folder.
    const UniqueFd folder(
        ::open(std::filesystem::path(path_).parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return folder && ::fsync(folder.get()) == 0;
}

} // namespace lumora::platform::linux_backend
