// What Foundation has on macOS and not in this system's headers: each declaration exactly as the platform
// documents it, with its availability, and nothing that no source uses.
#pragma once

#ifndef NS_ASSUME_NONNULL_BEGIN
#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")
#endif
#define CF_CONSUMED __attribute__((cf_consumed))
#define NS_INLINE static inline
#define NS_TYPED_ENUM
#define NS_TYPED_EXTENSIBLE_ENUM

NS_ASSUME_NONNULL_BEGIN

typedef NSString* NSRunLoopMode NS_TYPED_EXTENSIBLE_ENUM;

NS_INLINE id _Nullable CFBridgingRelease(CFTypeRef CF_CONSUMED _Nullable X) {
    return (__bridge_transfer id)X;
}

@interface NSURL (Lumora)
+ (NSURL*)URLWithDataRepresentation:(NSData*)data
                      relativeToURL:(nullable NSURL*)baseURL
    API_AVAILABLE(macos(10.11), ios(9.0), watchos(2.0), tvos(9.0));
@end

NS_ASSUME_NONNULL_END
