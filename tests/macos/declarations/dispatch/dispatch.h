// What the macOS sources use of Grand Central Dispatch, as its headers declare it.
#pragma once

#include <os/availability.h>
#include <stdint.h>

#import <Foundation/NSObject.h>

#ifdef __cplusplus
extern "C" {
#endif

@protocol OS_dispatch_object <NSObject>
@end
@protocol OS_dispatch_queue <OS_dispatch_object>
@end
@protocol OS_dispatch_queue_attr <OS_dispatch_object>
@end
typedef NSObject<OS_dispatch_queue>* dispatch_queue_t;
typedef NSObject<OS_dispatch_queue_attr>* dispatch_queue_attr_t;

typedef void (^dispatch_block_t)(void);

#define DISPATCH_QUEUE_SERIAL ((dispatch_queue_attr_t)nil)

enum {
    QOS_CLASS_USER_INTERACTIVE = 0x21,
    QOS_CLASS_USER_INITIATED = 0x19,
    QOS_CLASS_DEFAULT = 0x15,
    QOS_CLASS_UTILITY = 0x11,
    QOS_CLASS_BACKGROUND = 0x09,
    QOS_CLASS_UNSPECIFIED = 0x00,
};

API_AVAILABLE(macos(10.6), ios(4.0)) dispatch_queue_t dispatch_get_main_queue(void);
API_AVAILABLE(macos(10.6), ios(4.0))
dispatch_queue_t dispatch_get_global_queue(intptr_t identifier, uintptr_t flags);
API_AVAILABLE(macos(10.6), ios(4.0))
__attribute__((ns_returns_retained)) dispatch_queue_t
dispatch_queue_create(const char* _Nullable label, dispatch_queue_attr_t _Nullable attr);
API_AVAILABLE(macos(10.12), ios(10.0))
__attribute__((ns_returns_retained)) dispatch_queue_t
dispatch_queue_create_with_target(const char* _Nullable label, dispatch_queue_attr_t _Nullable attr,
                                  dispatch_queue_t _Nullable target);
API_AVAILABLE(macos(10.6), ios(4.0)) void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);

#ifdef __cplusplus
}
#endif
