#include "platform/macos/foundation/foundation_distributed_notifications.h"

#include "platform/macos/foundation/objc_exceptions.h"

namespace lumora::platform::macos_backend {

void FoundationDistributedNotifications::post(const std::string& name, const std::string& key,
                                              std::int64_t value) {
    atPort([&] {
        [NSDistributedNotificationCenter.defaultCenter postNotificationName:nsString(name)
                                                                     object:nil
                                                                   userInfo:@{
                                                                       nsString(key) : @(value)
                                                                   }
                                                         deliverImmediately:YES];
    });
}

} // namespace lumora::platform::macos_backend
