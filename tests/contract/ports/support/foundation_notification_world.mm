#include "platform/macos/foundation/property_list_values.h"
#include "support/notification_world.h"

#import <Foundation/Foundation.h>

static const NSTimeInterval kDeadline = 60; // only a fault reaches it

/// Keeps the payload of the first notification without a sender.
@interface LumoraNotificationEar : NSObject {
  @public
    NSDictionary* payload;
}
- (void)hear:(NSNotification*)notification;
@end

@implementation LumoraNotificationEar
- (void)hear:(NSNotification*)notification {
    if (payload == nil && notification.object == nil)
        payload = notification.userInfo;
}
@end

namespace lumora::contract {

using platform::PropertyListDictionary;

struct NotificationWorld::State {};

NotificationWorld::NotificationWorld() = default;

NotificationWorld::~NotificationWorld() = default;

std::optional<PropertyListDictionary> awaitNotification(const std::string& name,
                                                        const std::function<void()>& listening) {
    @autoreleasepool {
        LumoraNotificationEar* ear = [[LumoraNotificationEar alloc] init];
        [NSDistributedNotificationCenter.defaultCenter
                   addObserver:ear
                      selector:@selector(hear:)
                          name:@(name.c_str())
                        object:nil
            suspensionBehavior:NSNotificationSuspensionBehaviorDeliverImmediately];
        listening();
        NSDate* end = [NSDate dateWithTimeIntervalSinceNow:kDeadline];
        while (ear->payload == nil && end.timeIntervalSinceNow > 0)
            [NSRunLoop.currentRunLoop runMode:NSDefaultRunLoopMode beforeDate:end];
        [NSDistributedNotificationCenter.defaultCenter removeObserver:ear];

        const auto payload = platform::macos_backend::valueFrom(ear->payload);
        const auto* dictionary = payload ? payload->as<PropertyListDictionary>() : nullptr;
        return dictionary == nullptr ? std::nullopt : std::optional(*dictionary);
    }
}

} // namespace lumora::contract
