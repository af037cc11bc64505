// What this system's Foundation lacks, by what it has.
#import <Foundation/Foundation.h>

NSString* const NSFileProtectionKey = @"NSFileProtectionKey";
NSString* const NSFileProtectionComplete = @"NSFileProtectionComplete";

@implementation NSFileManager (Lumora)
- (BOOL)setAttributes:(NSDictionary*)attributes ofItemAtPath:(NSString*)path error:(NSError**)error {
    return [self changeFileAttributes:attributes atPath:path];
}
@end

@implementation NSData (Lumora)
+ (id)dataWithContentsOfFile:(NSString*)path options:(NSUInteger)options error:(NSError**)error {
    NSData* data = [self dataWithContentsOfFile:path];
    if (data == nil)
        *error = [NSError errorWithDomain:NSCocoaErrorDomain code:260 userInfo:nil];
    return data;
}
@end

@implementation NSFileHandle (Lumora)
- (BOOL)writeData:(NSData*)data error:(NSError**)error {
    [self writeData:data];
    return YES;
}
- (BOOL)truncateAtOffset:(unsigned long long)offset error:(NSError**)error {
    [self truncateFileAtOffset:offset];
    return YES;
}
@end

/// The sources leave the reference counts to the compiler, which for this runtime keeps none: nothing is ever
/// freed.
void neverRelease() { [NSAutoreleasePool enableRelease:NO]; }
