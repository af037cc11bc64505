// What the macOS contract suites use of Launch Services, as its headers declare it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <os/availability.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef int32_t OSStatus;
typedef const struct CF_BRIDGED_TYPE(NSURL) __CFURL* CFURLRef;

OSStatus LSRegisterURL(CFURLRef inURL, Boolean inUpdate)
    API_AVAILABLE(macos(10.3)) API_UNAVAILABLE(ios, tvos, watchos);

#ifdef __cplusplus
}
#endif
