#include "platform/macos/foundation/foundation_system_versions.h"

#include "platform/macos/foundation/objc_exceptions.h"
#include "platform/macos/foundation/property_list_values.h"

namespace lumora::platform::macos_backend {

static NSString* const kVersionFile = @"/System/Library/CoreServices/SystemVersion.plist";

SystemVersion FoundationSystemVersions::current() {
    return atPort([] {
        NSDictionary* file = [NSDictionary dictionaryWithContentsOfFile:kVersionFile];
        return SystemVersion{valueFrom<std::string>([file objectForKey:@"ProductName"]),
                             valueFrom<std::string>([file objectForKey:@"ProductVersion"])};
    });
}

} // namespace lumora::platform::macos_backend
