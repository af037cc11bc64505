// What the macOS sources use of Core Foundation, as its headers declare it.
#pragma once

#include <os/availability.h>

#define CF_BRIDGED_TYPE(type) __attribute__((objc_bridge(type)))
#define CF_RETURNS_RETAINED __attribute__((cf_returns_retained))

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned char Boolean;
typedef const CF_BRIDGED_TYPE(id) void* CFTypeRef;
typedef CFTypeRef CFPropertyListRef;
typedef const struct CF_BRIDGED_TYPE(NSString) __CFString* CFStringRef;
typedef struct CF_BRIDGED_TYPE(NSError) __CFError* CFErrorRef;

extern const CFStringRef kCFPreferencesAnyUser;
extern const CFStringRef kCFPreferencesCurrentUser;
extern const CFStringRef kCFPreferencesAnyHost;

void CFPreferencesSetValue(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID,
                           CFStringRef userName, CFStringRef hostName);
Boolean CFPreferencesSynchronize(CFStringRef applicationID, CFStringRef userName, CFStringRef hostName);

#ifdef __cplusplus
}
#endif
