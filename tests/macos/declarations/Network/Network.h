// What the macOS sources use of the Network framework, as its headers declare it.
#pragma once

#import <Foundation/Foundation.h>
#import <dispatch/dispatch.h>

NS_ASSUME_NONNULL_BEGIN

#ifdef __cplusplus
extern "C" {
#endif

@protocol OS_nw_path <NSObject>
@end
typedef NSObject<OS_nw_path>* nw_path_t;

@protocol OS_nw_path_monitor <NSObject>
@end
typedef NSObject<OS_nw_path_monitor>* nw_path_monitor_t;

typedef enum {
    nw_path_status_invalid = 0,
    nw_path_status_satisfied = 1,
    nw_path_status_unsatisfied = 2,
    nw_path_status_satisfiable = 3,
} nw_path_status_t;

typedef void (^nw_path_monitor_update_handler_t)(nw_path_t path);

API_AVAILABLE(macos(10.14))
nw_path_status_t nw_path_get_status(nw_path_t path);

API_AVAILABLE(macos(10.14))
NS_RETURNS_RETAINED nw_path_monitor_t nw_path_monitor_create(void);

API_AVAILABLE(macos(10.14))
void nw_path_monitor_set_update_handler(nw_path_monitor_t monitor,
                                        nw_path_monitor_update_handler_t update_handler);

API_AVAILABLE(macos(10.14))
void nw_path_monitor_set_queue(nw_path_monitor_t monitor, dispatch_queue_t queue);

API_AVAILABLE(macos(10.14))
void nw_path_monitor_start(nw_path_monitor_t monitor);

API_AVAILABLE(macos(10.14))
void nw_path_monitor_cancel(nw_path_monitor_t monitor);

#ifdef __cplusplus
}
#endif

NS_ASSUME_NONNULL_END
