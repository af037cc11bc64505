#include <gtest/gtest.h>

#import <AppKit/AppKit.h>
#include <cstdlib>

/// The sources leave the reference counts to the compiler, which for this runtime keeps none: nothing is ever
/// freed.
int main(int argc, char** argv) {
    [[NSAutoreleasePool alloc] init];
    [NSAutoreleasePool enableRelease:NO];
    testing::InitGoogleTest(&argc, argv);
    [NSApplication sharedApplication];
    std::_Exit(RUN_ALL_TESTS()); // its windows' threads still run
}
