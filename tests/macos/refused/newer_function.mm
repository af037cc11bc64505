#import <Foundation/Foundation.h>

void newerFunction() API_AVAILABLE(macos(11.0), ios(14.0));

void call() { newerFunction(); }
