// What this system's Foundation lacks, by what it has.
#import <Foundation/Foundation.h>

NSString* const NSFileProtectionKey = @"NSFileProtectionKey";
NSString* const NSFileProtectionComplete = @"NSFileProtectionComplete";

@implementation NSFileManager (Lumora)
- (BOOL)setAttributes:(NSDictionary*)attributes ofItemAtPath:(NSString*)path error:(NSError**)error {
    return [self changeFileAttributes:attributes atPath:path];
}
@end

@implementation NSTask (Lumora)
- (NSURL*)executableURL {
    return [NSURL fileURLWithPath:[self launchPath]];
}
- (void)setExecutableURL:(NSURL*)url {
    [self setLaunchPath:[url path]];
}
- (BOOL)launchAndReturnError:(NSError**)error {
    const int fault = access([[self launchPath] fileSystemRepresentation], X_OK) == 0 ? 0 : errno;
    if (fault == 0)
        [self launch];
    else
        *error = [NSError errorWithDomain:NSPOSIXErrorDomain code:fault userInfo:nil];
    return fault == 0;
}
@end

/// The sources leave the reference counts to the compiler, which for this runtime keeps none: nothing is ever
/// freed.
void neverRelease() { [NSAutoreleasePool enableRelease:NO]; }
