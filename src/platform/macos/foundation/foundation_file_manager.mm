#include "platform/macos/foundation/foundation_file_manager.h"

#include "platform/macos/foundation/objc_exceptions.h"
#include "platform/posix/posix_error.h"
#include "platform/posix/temporary_sibling.h"

#include <cerrno>

namespace lumora::platform::macos_backend {

namespace {

NSFileManager* manager() { return NSFileManager.defaultManager; }

// The entry itself, also when it is a link: no slash at its end follows it.
NSString* entryAt(const std::string& text) {
    NSString* path = nsString(text);
    return [path.stringByDeletingLastPathComponent stringByAppendingPathComponent:path.lastPathComponent];
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
    return atPort([&]() -> Result<void> {
        NSError* error = nil;
        if (![manager() createDirectoryAtPath:nsString(path)
                  withIntermediateDirectories:YES
                                   attributes:nil
                                        error:&error])
            return errorOf(error);
        return {};
    });
}

Result<void> FoundationFileManager::copyItem(const std::string& source, const std::string& destination) {
    for (const std::string& path : {source, destination}) {
        if (const auto place = resolved(path); !place)
            return place.error();
    }
    return atPort([&]() -> Result<void> {
        // In a folder that is held: by it the next copy knows what a killed one left, and removes it.
        posix_backend::TemporarySibling aside(textOf(entryAt(destination)));
        if (aside.createFolder() < 0)
            return posix_backend::posixError(errno, destination);
        NSError* error = nil;
        if (![manager() copyItemAtPath:entryAt(source) toPath:nsString(aside.inside()) error:&error])
            return errorOf(error);
        const int failure = aside.placeInsideIfFree();
        return failure == 0 ? Result<void>() : posix_backend::posixError(failure, destination);
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
