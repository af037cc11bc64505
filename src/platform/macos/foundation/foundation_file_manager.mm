#include "platform/macos/foundation/foundation_file_manager.h"

#include "platform/macos/foundation/objc_exceptions.h"
#include "platform/posix/tree_removal.h"

namespace lumora::platform::macos_backend {

namespace {

NSFileManager* manager() { return NSFileManager.defaultManager; }

// The entry itself, also when it is a link: no slash at its end follows it.
NSString* entryAt(const std::string& text) {
    NSString* path = nsString(text);
    return [path.stringByDeletingLastPathComponent stringByAppendingPathComponent:path.lastPathComponent];
}

// A name beside the entry for what takes its place in one step.
NSString* besides(NSString* path) {
    NSString* name = [@"." stringByAppendingString:NSUUID.UUID.UUIDString];
    return [path.stringByDeletingLastPathComponent stringByAppendingPathComponent:name];
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
    return atPort([&]() -> bool { return resolved(path) && [manager() fileExistsAtPath:nsString(path)]; });
}

Result<void> FoundationFileManager::createDirectoryWithIntermediates(const std::string& path) {
    if (const auto place = resolved(path); !place)
        return place.error();
    return attempt([&](NSError** error) {
        return [manager() createDirectoryAtPath:nsString(path)
                    withIntermediateDirectories:YES
                                     attributes:nil
                                          error:error];
    });
}

Result<void> FoundationFileManager::copyItem(const std::string& source, const std::string& destination) {
    for (const std::string& path : {source, destination}) {
        if (const auto place = resolved(path); !place)
            return place.error();
    }
    return attempt([&](NSError** error) {
        NSString* copy = besides(entryAt(destination));
        const bool copied = [manager() copyItemAtPath:entryAt(source) toPath:copy error:error] &&
                            [manager() moveItemAtPath:copy toPath:entryAt(destination) error:error];
        if (!copied)
            static_cast<void>(posix_backend::removeTree(textOf(copy))); // read-only folders too
        return copied;
    });
}

// Refused by volumes without data protection: there is none then.
void FoundationFileManager::protectCompletely(const std::string& file) {
    if (@available(macOS 11.0, *))
        atPort([&] {
            [manager() setAttributes:@{NSFileProtectionKey : NSFileProtectionComplete}
                        ofItemAtPath:nsString(file)
                               error:nullptr];
        });
}

} // namespace lumora::platform::macos_backend
