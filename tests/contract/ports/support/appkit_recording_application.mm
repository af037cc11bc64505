#include "platform/macos/foundation/text.h"
#include "support/recording.h"

#import <AppKit/AppKit.h>

/// Asked to open an address, it records that and leaves.
@interface LumoraRecordingDelegate : NSObject <NSApplicationDelegate>
- (instancetype)initWithRecorder:(const lumora::contract::Recorder*)recorder;
@end

@implementation LumoraRecordingDelegate {
    const lumora::contract::Recorder* _recorder;
}

- (instancetype)initWithRecorder:(const lumora::contract::Recorder*)recorder {
    if ((self = [super init]))
        _recorder = recorder;
    return self;
}

- (void)application:(NSApplication*)application openURLs:(NSArray<NSURL*>*)addresses {
    for (NSURL* address in addresses)
        _recorder->opened(lumora::platform::macos_backend::textOf(address.absoluteString));
    [application terminate:nil];
}

@end

int main(int argc, char** argv) {
    @autoreleasepool {
        const lumora::contract::Recorder recorder(argv[0]);
        recorder.launched(argc, argv);
        ::alarm(60); // should nobody end it
        // Its arguments are no documents.
        [NSUserDefaults.standardUserDefaults registerDefaults:@{@"NSTreatUnknownArgumentsAsOpen" : @"NO"}];
        // Static, for the application does not hold it.
        static LumoraRecordingDelegate* delegate = nil;
        delegate = [[LumoraRecordingDelegate alloc] initWithRecorder:&recorder];
        NSApplication.sharedApplication.delegate = delegate;
        [NSApplication.sharedApplication run];
    }
    return 0;
}
