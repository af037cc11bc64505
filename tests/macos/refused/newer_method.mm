#import <Foundation/Foundation.h>

@interface NSString (Newer)
- (void)newerMethod API_AVAILABLE(macos(10.16));
@end

void call(NSString* text) {
    if (@available(macOS 10.15, *))
        [text newerMethod];
}
