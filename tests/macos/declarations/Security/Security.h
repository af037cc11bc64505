// What the macOS sources use of the Security framework, and of Foundation's types made of it, as their
// headers declare it.
#pragma once

#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

#ifdef __cplusplus
extern "C" {
#endif

typedef struct CF_BRIDGED_TYPE(id) __SecTrust* SecTrustRef;

__attribute__((warn_unused_result)) bool
SecTrustEvaluateWithError(SecTrustRef trust, CFErrorRef _Nullable* _Nullable CF_RETURNS_RETAINED error)
    API_AVAILABLE(macos(10.14));

#ifdef __cplusplus
}
#endif

@interface NSURLProtectionSpace (NSServerTrustValidationSpace)
@property(nullable, readonly) SecTrustRef serverTrust API_AVAILABLE(macos(10.6));
@end

@interface NSURLCredential (NSServerTrust)
+ (NSURLCredential*)credentialForTrust:(SecTrustRef)trust API_AVAILABLE(macos(10.6));
@end

NS_ASSUME_NONNULL_END
