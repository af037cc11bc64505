#include "platform/macos/foundation/foundation_file_manager.h"

#include "platform/macos/foundation/objc_exceptions.h"
#include "platform/posix/posix_error.h"
#include "platform/posix/unique_fd.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

namespace lumora::platform::macos_backend {

namespace {

NSFileManager* manager() { return NSFileManager.defaultManager; }

NSData* bytesOf(std::string_view text) { return [NSData dataWithBytes:text.data() length:text.size()]; }

// The entry itself, also when it is a link: no slash at its end follows it.
NSString* entryAt(const std::string& text) {
    NSString* path = nsString(text);
    return [path.stringByDeletingLastPathComponent stringByAppendingPathComponent:path.lastPathComponent];
}

// A name beside the entry for what takes its place, or leaves it, in one step.
NSString* besides(NSString* path) {
    NSString* name = [@"." stringByAppendingString:NSUUID.UUID.UUIDString];
    return [path.stringByDeletingLastPathComponent stringByAppendingPathComponent:name];
}

// Refused by volumes without data protection: there is none then.
void protectCompletely(NSString* file) {
    if (@available(macOS 11.0, *))
        [manager() setAttributes:@{NSFileProtectionKey : NSFileProtectionComplete}
                    ofItemAtPath:file
                           error:nullptr];
}

// Only a folder that may be written in can be emptied: the user's own ones may, whatever their modes say.
void openUp(NSString* path) {
    struct stat status {};
    if (::lstat(path.fileSystemRepresentation, &status) != 0 || !S_ISDIR(status.st_mode))
        return;
    ::fchmodat(AT_FDCWD, path.fileSystemRepresentation,
               static_cast<mode_t>((status.st_mode & 07777) | S_IRWXU), AT_SYMLINK_NOFOLLOW);
    for (NSString* name in [manager() contentsOfDirectoryAtPath:path error:nullptr])
        openUp([path stringByAppendingPathComponent:name]);
}

// Runs one operation that tells its success and leaves an error behind when it fails.
template <class Operation> Result<void> attempt(const Operation& operation) {
    return atPort([&]() -> Result<void> {
        NSError* error = nil;
        if (!operation(&error))
            return errorOf(error);
        return {};
    });
}

// Never makes a file: the handle is one of the file that stands there.
bool replaceContents(const std::string& path, std::string_view contents, NSError** error) {
    NSFileHandle* file = [NSFileHandle fileHandleForWritingToURL:[NSURL fileURLWithPath:nsString(path)]
                                                           error:error];
    return file != nil && [file truncateAtOffset:0 error:error] &&
           [file writeData:bytesOf(contents) error:error];
}

} // namespace

std::string FoundationFileManager::homeDirectory() {
    return atPort([] { return textOf(NSHomeDirectory()); });
}

std::string FoundationFileManager::libraryDirectory() {
    return atPort([] {
        return textOf(
            NSSearchPathForDirectoriesInDomains(NSLibraryDirectory, NSUserDomainMask, YES).firstObject);
    });
}

bool FoundationFileManager::fileExists(const std::string& path) {
    return atPort([&]() -> bool { return [manager() fileExistsAtPath:nsString(path)]; });
}

Result<void> FoundationFileManager::createDirectoryWithIntermediates(const std::string& path) {
    return attempt([&](NSError** error) {
        return [manager() createDirectoryAtPath:nsString(path)
                    withIntermediateDirectories:YES
                                     attributes:nil
                                          error:error];
    });
}

Result<void> FoundationFileManager::copyItem(const std::string& source, const std::string& destination) {
    return attempt([&](NSError** error) {
        NSString* copy = besides(entryAt(destination));
        const bool copied = [manager() copyItemAtPath:entryAt(source) toPath:copy error:error] &&
                            [manager() moveItemAtPath:copy toPath:entryAt(destination) error:error];
        if (!copied)
            [manager() removeItemAtPath:copy error:nullptr];
        return copied;
    });
}

Result<void> FoundationFileManager::removeItem(const std::string& path) {
    return attempt([&](NSError** error) {
        NSString* removed = besides(entryAt(path));
        if (![manager() moveItemAtPath:entryAt(path)
                                toPath:removed
                                 error:error]) // not emptied where it must stay
            return false;
        if ([manager() removeItemAtPath:removed error:nullptr])
            return true;
        openUp(removed);
        if ([manager() removeItemAtPath:removed error:error])
            return true;
        [manager() moveItemAtPath:removed toPath:entryAt(path) error:nullptr];
        return false;
    });
}

Result<void> FoundationFileManager::createFile(const std::string& path, std::string_view contents,
                                               const FileAttributes& attributes) {
    return atPort([&]() -> Result<void> {
        NSString* file = besides(entryAt(path));
        const auto mode =
            static_cast<mode_t>(attributes.posixPermissions.value_or(0666)); // 0666 less the umask
        // Not the platform's own call: for a moment that file is open to whoever would keep it open.
        const posix_backend::UniqueFd descriptor(
            ::open(file.fileSystemRepresentation, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
        if (!descriptor || (attributes.posixPermissions && ::fchmod(descriptor.get(), mode) != 0))
            return posix_backend::posixError(errno, path);
        if (attributes.completeProtection)
            protectCompletely(file);

        Result<void> result;
        NSError* error = nil;
        NSFileHandle* handle = [[NSFileHandle alloc] initWithFileDescriptor:descriptor.get()
                                                             closeOnDealloc:NO];
        if (![handle writeData:bytesOf(contents) error:&error])
            result = errorOf(error);
        else if (std::rename(file.fileSystemRepresentation, entryAt(path).fileSystemRepresentation) != 0)
            result = posix_backend::posixError(errno, path);
        if (!result)
            [manager() removeItemAtPath:file error:nullptr];
        return result;
    });
}

Result<std::string> FoundationFileManager::readFile(const std::string& path) {
    return atPort([&]() -> Result<std::string> {
        struct stat status {};
        // Of anything but a file there is nothing to read, and a pipe would be waited for.
        if (::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode))
            return posix_backend::posixError(S_ISDIR(status.st_mode) ? EISDIR : EINVAL, path);
        NSError* error = nil;
        NSData* data = [NSData dataWithContentsOfFile:nsString(path) options:0 error:&error];
        if (data == nil)
            return errorOf(error);
        return std::string(static_cast<const char*>(data.bytes), data.length);
    });
}

Result<void> FoundationFileManager::overwriteFile(const std::string& path, std::string_view contents) {
    return attempt([&](NSError** error) { return replaceContents(path, contents, error); });
}

Result<std::uint64_t> FoundationFileManager::fileSize(const std::string& path) {
    return atPort([&]() -> Result<std::uint64_t> {
        NSError* error = nil;
        NSDictionary* attributes = [manager() attributesOfItemAtPath:nsString(path) error:&error];
        if (attributes == nil)
            return errorOf(error);
        return std::uint64_t{attributes.fileSize};
    });
}

Result<void> FoundationFileManager::truncateFile(const std::string& path) {
    return attempt([&](NSError** error) { return replaceContents(path, "", error); });
}

} // namespace lumora::platform::macos_backend
