#include "platform/macos/appkit/appkit_main_loop.h"
#include "running_loop.h"

#import <AppKit/AppKit.h>

namespace lumora::contract {

namespace {

constexpr NSTimeInterval kLookAgain = 0.005; // what changes a condition may be another thread

class RunningAppKitLoop final : public RunningLoop {
  public:
    RunningAppKitLoop() { [NSApplication sharedApplication]; } // makes the modal mode one of the common ones

    platform::MainLoop& loop() override { return loop_; }

    bool runUntil(const Condition& condition, std::chrono::milliseconds deadline) override {
        return runInMode(NSDefaultRunLoopMode, condition, deadline);
    }

    bool runModallyUntil(const Condition& condition, std::chrono::milliseconds deadline) override {
        return runInMode(NSModalPanelRunLoopMode, condition, deadline);
    }

  private:
    static bool runInMode(NSRunLoopMode mode, const Condition& condition,
                          std::chrono::milliseconds deadline) {
        const auto end = std::chrono::steady_clock::now() + deadline;
        while (!condition() && std::chrono::steady_clock::now() < end) {
            @autoreleasepool {
                NSDate* soon = [NSDate dateWithTimeIntervalSinceNow:kLookAgain];
                [NSRunLoop.mainRunLoop runMode:mode beforeDate:soon];
            }
        }
        return condition();
    }

    platform::macos_backend::AppKitMainLoop loop_;
};

} // namespace

std::unique_ptr<RunningLoop> makeRunningLoop() { return std::make_unique<RunningAppKitLoop>(); }

} // namespace lumora::contract
