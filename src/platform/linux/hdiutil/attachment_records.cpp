#include "platform/linux/hdiutil/attachment_records.h"

#include "platform/linux/hdiutil/failure.h"
#include "platform/linux/hdiutil/folder_listing.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <sstream>

namespace lumora::platform::linux_backend {
namespace {

using posix_backend::UniqueFd;

// Volumes never begin with a dot.
constexpr const char* kUnfinishedRecord = ".new";
constexpr std::size_t kMaximumRecordBytes = 16'384;

// A record is a few lines of blank-separated words: "volume INODE SECONDS NANOSECONDS", once or twice, and "image PATH".
std::string render(const AttachmentRecord& record) {
    std::string text;
    for (const VolumeIdentity& identity : record.identities) {
        text +=
            fmt::format("volume {} {} {}\n", identity.inode, identity.bornSeconds, identity.bornNanoseconds);
    }
    return text + "image " + printable(record.image) + "\n";
}

std::optional<AttachmentRecord> parse(const std::string& text) {
    AttachmentRecord record;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string key;
        words >> key;
        if (key == "volume") {
            VolumeIdentity identity;
            if (!(words >> identity.inode >> identity.bornSeconds >> identity.bornNanoseconds))
                return std::nullopt;
            record.identities.push_back(identity);
        } else if (key == "image") {
            std::getline(words >> std::ws, record.image);
        } else {
            return std::nullopt;
        }
    }
    return record;
}

} // namespace

VolumeIdentity VolumeIdentity::of(int folder) {
    struct statx attributes {};
    if (::statx(folder, "", AT_EMPTY_PATH, STATX_INO | STATX_BTIME, &attributes) != 0)
        throwErrno("cannot examine a volume");
    VolumeIdentity identity;
    identity.inode = attributes.stx_ino;
    if ((attributes.stx_mask & STATX_BTIME) != 0) {
        identity.bornSeconds = attributes.stx_btime.tv_sec;
        identity.bornNanoseconds = attributes.stx_btime.tv_nsec;
    }
    return identity;
}

AttachmentRecords::AttachmentRecords(int volumes)
    : volumes_(volumes), folderName_(fmt::format(".attachments.{}", ::geteuid())) {}

UniqueFd AttachmentRecords::open(IfAbsent ifAbsent) const {
    if (ifAbsent == IfAbsent::create && ::mkdirat(volumes_, folderName_.c_str(), S_IRWXU) != 0 &&
        errno != EEXIST)
        throwErrno("cannot record the attachment");
    UniqueFd folder(::openat(volumes_, folderName_.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder) {
        if (ifAbsent == IfAbsent::leave && errno == ENOENT)
            return folder;
        throwErrno("cannot open the attachment records");
    }
    struct stat records {};
    struct stat volumes {};
    if (::fstat(folder.get(), &records) != 0 || ::fstat(volumes_, &volumes) != 0)
        throwErrno("cannot examine the attachment records");
    if (records.st_uid != ::geteuid() || records.st_dev != volumes.st_dev ||
        (records.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        throw DiskImageFailure("the attachment records are not the caller's own", EPERM);
    return folder;
}

std::optional<AttachmentRecord> AttachmentRecords::find(const std::string& volume) const {
    const UniqueFd folder = open(IfAbsent::leave);
    if (!folder)
        return std::nullopt;
    const UniqueFd file(
        ::openat(folder.get(), volume.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file)
        return std::nullopt;
    std::string text(kMaximumRecordBytes, '\0');
    const ssize_t count = ::read(file.get(), text.data(), text.size());
    if (count < 0)
        return std::nullopt;
    text.resize(static_cast<std::size_t>(count));
    return parse(text);
}

std::vector<std::string> AttachmentRecords::volumes() const {
    const UniqueFd folder = open(IfAbsent::leave);
    std::vector<std::string> names;
    if (folder) {
        names = listFolder(folder.get());
        std::erase(names, kUnfinishedRecord);
    }
    return names;
}

void AttachmentRecords::write(const std::string& volume, const AttachmentRecord& record) const {
    const UniqueFd folder = open(IfAbsent::create);
    const UniqueFd file(::openat(folder.get(), kUnfinishedRecord,
                                 O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    const std::string text = render(record);
    // On the disk before it replaces the old record: a volume whose record is lost could never be detached again.
    if (!file || ::write(file.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()) ||
        ::fsync(file.get()) != 0 ||
        ::renameat(folder.get(), kUnfinishedRecord, folder.get(), volume.c_str()) != 0)
        throwErrno("cannot record the attachment");
}

void AttachmentRecords::erase(const std::string& volume) const {
    const UniqueFd folder = open(IfAbsent::leave);
    if (folder && ::unlinkat(folder.get(), volume.c_str(), 0) != 0 && errno != ENOENT)
        throwErrno("cannot erase the attachment record");
    // With the last record goes the folder; until then it is not empty, and stays.
    static_cast<void>(::unlinkat(volumes_, folderName_.c_str(), AT_REMOVEDIR));
}

} // namespace lumora::platform::linux_backend
