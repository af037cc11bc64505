#include <gtest/gtest.h>

#import <AppKit/AppKit.h>
#include <cstdlib>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    @autoreleasepool {
        [NSApplication sharedApplication];
        // A program outside a bundle has no windows unless it asks for them. It needs no place in the Dock.
        [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory];
        // The engine's threads still run: the end of the process is theirs too.
        std::_Exit(RUN_ALL_TESTS());
    }
}
