#include "platform/linux/hdiutil/volume_unpacker.h"

#include "platform/linux/hdiutil/entry_attributes.h"
#include "platform/linux/hdiutil/failure.h"
#include "platform/linux/hdiutil/volume_tree.h"
#include "platform/posix/unique_fd.h"

#include <archive.h>
#include <archive_entry.h>
#include <fmt/format.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace lumora::platform::linux_backend {
namespace {

using posix_backend::UniqueFd;

constexpr std::size_t kReadBytes = 262'144;

struct FreeArchive {
    void operator()(archive* reader) const noexcept { archive_read_free(reader); }
};

void writeAll(int file, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t count = ::write(file, data, size);
        if (count < 0) {
            if (errno == EINTR)
                continue;
            throwErrno("cannot unpack the image");
        }
        data += count;
        size -= static_cast<std::size_t>(count);
    }
}

class Unpacker {
  public:
    Unpacker(int image, int folder, const DiskImageLimits& limits)
        : root_(folder), limits_(limits), reader_(archive_read_new()) {
        if (!reader_ || archive_read_support_filter_none(reader_.get()) != ARCHIVE_OK ||
            archive_read_support_format_iso9660(reader_.get()) != ARCHIVE_OK ||
            ::lseek(image, 0, SEEK_SET) != 0)
            throw DiskImageFailure("cannot set up the image reader");
        if (archive_read_open_fd(reader_.get(), image, kReadBytes) != ARCHIVE_OK)
            unreadable();
    }

    void run() {
        archive_entry* entry = nullptr;
        int status = ARCHIVE_OK;
        while ((status = archive_read_next_header(reader_.get(), &entry)) == ARCHIVE_OK)
            unpackEntry(entry);
        // Warnings count too: they are how the reader reports an entry that it gives up on.
        if (status != ARCHIVE_EOF)
            unreadable();
        tree_.checkLinks();
        makeLinks();
        finishFolders();
    }

  private:
    struct DeferredLink {
        std::string path;
        std::string target;
        EntryAttributes attributes;
    };
    struct DeferredFolder {
        std::string path;
        EntryAttributes attributes;
    };
    /// An entry's folder, open, and its name in there.
    struct Place {
        int folder;
        const char* name;
    };

    [[noreturn]] void unreadable() const {
        const char* reason = archive_error_string(reader_.get());
        throw DiskImageFailure("cannot read the image: " +
                               printable(reason != nullptr ? reason : "unknown reason"));
    }

    void unpackEntry(archive_entry* entry) {
        const char* rawPath = archive_entry_pathname(entry);
        if (rawPath == nullptr)
            throw DiskImageFailure("the image has an entry whose name cannot be read");
        const std::string path = rawPath;
        if (path == "." && archive_entry_filetype(entry) == AE_IFDIR) {
            rootAttributes_ = EntryAttributes::of(entry);
            return;
        }
        if (tree_.size() >= limits_.entries)
            throw DiskImageFailure("the image has too many entries");
        switch (archive_entry_filetype(entry)) {
        case AE_IFDIR:
            makeFolder(path, EntryAttributes::of(entry));
            break;
        case AE_IFREG:
            tree_.add(path, EntryKind::file);
            if (const char* original = archive_entry_hardlink(entry); original != nullptr)
                copyLastFile(path, original, EntryAttributes::of(entry));
            else
                writeFile(path, entry);
            break;
        case AE_IFLNK: {
            const char* rawTarget = archive_entry_symlink(entry);
            const std::string target = rawTarget != nullptr ? rawTarget : "";
            tree_.add(path, EntryKind::link, target);
            links_.push_back({path, target, EntryAttributes::of(entry)});
            break;
        }
        default:
            throw DiskImageFailure(fmt::format(
                "the image's entry \"{}\" is neither a file, a folder nor a link", printable(path)));
        }
    }

    /// Opens the folder that `path` lies in. No link stands anywhere yet, and none would be followed.
    Place placeOf(const std::string& path) {
        const auto slash = path.rfind('/');
        if (slash == std::string::npos)
            return {root_, path.c_str()};
        const std::string folderPath = path.substr(0, slash);
        if (!openFolder_ || folderPath != openFolderPath_) {
            openFolder_ = openFolder(folderPath);
            openFolderPath_ = folderPath;
        }
        return {openFolder_.get(), path.c_str() + slash + 1};
    }

    [[nodiscard]] UniqueFd openFolder(const std::string& path) const {
        UniqueFd folder;
        for (std::size_t begin = 0; begin <= path.size();) {
            const std::size_t end = std::min(path.find('/', begin), path.size());
            const std::string component = path.substr(begin, end - begin);
            folder = UniqueFd(::openat(folder ? folder.get() : root_, component.c_str(),
                                       O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
            if (!folder)
                throwErrno("cannot open " + printable(path));
            begin = end + 1;
        }
        return folder;
    }

    void makeFolder(const std::string& path, const EntryAttributes& attributes) {
        tree_.add(path, EntryKind::folder);
        const Place place = placeOf(path);
        // The folder's own mode may forbid writing into it: that waits until all is unpacked.
        if (::mkdirat(place.folder, place.name, S_IRWXU) != 0)
            throwErrno("cannot create " + printable(path));
        folders_.push_back({path, attributes});
    }

    [[nodiscard]] UniqueFd createFile(const std::string& path) {
        const Place place = placeOf(path);
        UniqueFd file(::openat(place.folder, place.name, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                               S_IRUSR | S_IWUSR));
        if (!file)
            throwErrno("cannot create " + printable(path));
        return file;
    }

    void claimSpace(std::uint64_t bytes) {
        if (bytes > limits_.bytes - bytesClaimed_)
            throw DiskImageFailure("the image unpacks to more than is accepted");
        bytesClaimed_ += bytes;
        struct statvfs space {};
        if (::fstatvfs(root_, &space) != 0)
            throwErrno("cannot determine the free space");
        if (bytes / space.f_frsize > space.f_bavail)
            throw DiskImageFailure("the image unpacks to more than there is room for", ENOSPC);
    }

    void writeFile(const std::string& path, archive_entry* entry) {
        const la_int64_t size = archive_entry_size(entry);
        if (archive_entry_size_is_set(entry) == 0 || size < 0)
            throw DiskImageFailure(fmt::format("the image's file \"{}\" has no size", printable(path)));
        claimSpace(static_cast<std::uint64_t>(size));
        UniqueFd file = createFile(path);

        la_int64_t written = 0;
        const void* block = nullptr;
        std::size_t blockSize = 0;
        la_int64_t offset = 0;
        int status = ARCHIVE_OK;
        while ((status = archive_read_data_block(reader_.get(), &block, &blockSize, &offset)) == ARCHIVE_OK) {
            if (offset != written || blockSize > static_cast<std::uint64_t>(size - written))
                throw DiskImageFailure(fmt::format("the image's file \"{}\" is damaged", printable(path)));
            writeAll(file.get(), static_cast<const char*>(block), blockSize);
            written += static_cast<la_int64_t>(blockSize);
        }
        if (status != ARCHIVE_EOF)
            unreadable();
        if (written != size)
            throw DiskImageFailure(fmt::format("the image's file \"{}\" is cut short", printable(path)));
        EntryAttributes::of(entry).apply(file.get(), path);
        lastFile_ = std::move(file);
        lastFilePath_ = path;
    }

    /// The reader reports a second name of the same contents right after the first, so the first is still open. It is
    /// copied through that descriptor because its mode may already forbid opening it again.
    void copyLastFile(const std::string& path, const std::string& original,
                      const EntryAttributes& attributes) {
        struct stat status {};
        if (!lastFile_ || original != lastFilePath_ || ::fstat(lastFile_.get(), &status) != 0) {
            throw DiskImageFailure(
                fmt::format("the image's hard link \"{}\" has no original", printable(path)));
        }
        claimSpace(static_cast<std::uint64_t>(status.st_size));
        const UniqueFd file = createFile(path);
        std::vector<char> buffer(kReadBytes);
        for (off_t at = 0; at < status.st_size;) {
            const ssize_t count = ::pread(lastFile_.get(), buffer.data(), buffer.size(), at);
            if (count <= 0)
                throwErrno("cannot copy " + printable(original));
            writeAll(file.get(), buffer.data(), static_cast<std::size_t>(count));
            at += count;
        }
        attributes.apply(file.get(), path);
    }

    void makeLinks() {
        for (const DeferredLink& link : links_) {
            const Place place = placeOf(link.path);
            if (::symlinkat(link.target.c_str(), place.folder, place.name) != 0 ||
                ::utimensat(place.folder, place.name, link.attributes.times.data(), AT_SYMLINK_NOFOLLOW) != 0)
                throwErrno("cannot create the link " + printable(link.path));
        }
    }

    void finishFolders() {
        // Folders come before what they hold, so backwards is from the inside out.
        for (auto folder = folders_.rbegin(); folder != folders_.rend(); ++folder)
            folder->attributes.apply(openFolder(folder->path).get(), folder->path);
        // Unlike an attached image a volume here can be written: with its folder closed, whatever modes an image has inside,
        // nobody exchanges what is about to be copied, and started.
        rootAttributes_.mode &= S_IRWXU;
        rootAttributes_.apply(root_, "the volume");
    }

    int root_;
    const DiskImageLimits& limits_;
    std::unique_ptr<archive, FreeArchive> reader_;
    VolumeTree tree_;
    std::vector<DeferredLink> links_;
    std::vector<DeferredFolder> folders_;
    EntryAttributes rootAttributes_;
    std::uint64_t bytesClaimed_ = 0;
    UniqueFd openFolder_;
    std::string openFolderPath_;
    UniqueFd lastFile_;
    std::string lastFilePath_;
};

} // namespace

void unpackIso(int image, int folder, const DiskImageLimits& limits) {
    Unpacker(image, folder, limits).run();
}

} // namespace lumora::platform::linux_backend
