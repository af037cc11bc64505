// What Foundation has on macOS and not in this system's headers: each declaration exactly as the platform
// documents it, with its availability, and nothing that no source uses.
#pragma once

#ifndef NS_ASSUME_NONNULL_BEGIN
#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")
#endif
#define NS_TYPED_EXTENSIBLE_ENUM

NS_ASSUME_NONNULL_BEGIN

typedef NSString* NSRunLoopMode NS_TYPED_EXTENSIBLE_ENUM;

@interface NSURL (Lumora)
+ (NSURL*)URLWithDataRepresentation:(NSData*)data
                      relativeToURL:(nullable NSURL*)baseURL
    API_AVAILABLE(macos(10.11), ios(9.0), watchos(2.0), tvos(9.0));
@end

enum {
    NSPropertyListReadCorruptError API_AVAILABLE(macos(10.6), ios(4.0), watchos(2.0), tvos(9.0)) = 3840,
};

extern NSString* const NSFileProtectionKey API_AVAILABLE(macos(11.0), ios(4.0), watchos(2.0), tvos(9.0));
extern NSString* const NSFileProtectionComplete API_AVAILABLE(macos(11.0), ios(4.0), watchos(2.0), tvos(9.0));

@interface NSFileManager (Lumora)
- (BOOL)setAttributes:(NSDictionary<NSString*, id>*)attributes
         ofItemAtPath:(NSString*)path
                error:(NSError**)error API_AVAILABLE(macos(10.5), ios(2.0), watchos(2.0), tvos(9.0));
@end

@interface NSTask (Lumora)
@property(nullable, copy) NSURL* executableURL API_AVAILABLE(macos(10.13))API_UNAVAILABLE(ios, watchos, tvos);
- (BOOL)launchAndReturnError:(out NSError** _Nullable)error
    API_AVAILABLE(macos(10.13))API_UNAVAILABLE(ios, watchos, tvos);
@end

extern NSString* const NSAppleScriptErrorMessage;
extern NSString* const NSAppleScriptErrorNumber;

@interface NSAppleScript (Lumora)
- (nullable instancetype)initWithSource:(NSString*)source;
- (NSAppleEventDescriptor*)executeAndReturnError:
    (NSDictionary<NSString*, id>* _Nullable __autoreleasing* _Nullable)errorInfo;
@end

NS_ASSUME_NONNULL_END
