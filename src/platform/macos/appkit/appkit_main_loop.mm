#include "platform/macos/appkit/appkit_main_loop.h"

#include "support/exception_guard.h"

#import <Foundation/Foundation.h>
#import <dispatch/dispatch.h>

namespace lumora::platform::macos_backend {

namespace {

class RunLoopTimer final : public Timer {
  public:
    RunLoopTimer(NSTimeInterval interval, NSRunLoopMode mode, std::function<void()> action)
        : timer_([NSTimer timerWithTimeInterval:interval
                                        repeats:YES
                                          block:^(NSTimer*) {
                                              const auto held = action; // the action may end its own timer
                                              guarded(__func__, held);
                                          }]) {
        [NSRunLoop.mainRunLoop addTimer:timer_ forMode:mode];
    }
    ~RunLoopTimer() override { [timer_ invalidate]; }
    RunLoopTimer(const RunLoopTimer&) = delete;
    RunLoopTimer& operator=(const RunLoopTimer&) = delete;

  private:
    NSTimer* timer_;
};

class DispatchQueue final : public SerialQueue {
  public:
    explicit DispatchQueue(const std::string& label)
        : queue_(dispatch_queue_create(label.c_str(), DISPATCH_QUEUE_SERIAL)) {}

    void async(std::function<void()> work) override {
        dispatch_async(queue_, ^{
            guarded(__func__, work);
        });
    }

  private:
    dispatch_queue_t queue_;
};

} // namespace

void AppKitMainLoop::asyncOnMain(std::function<void()> work) {
    dispatch_async(dispatch_get_main_queue(), ^{
        guarded(__func__, work);
    });
}

void AppKitMainLoop::asyncInBackground(std::function<void()> work) {
    dispatch_async(dispatch_get_global_queue(QOS_CLASS_BACKGROUND, 0), ^{
        guarded(__func__, work);
    });
}

std::unique_ptr<Timer> AppKitMainLoop::scheduleTimer(std::chrono::duration<double> interval, TimerMode mode,
                                                     std::function<void()> action) {
    const NSRunLoopMode runLoopMode =
        mode == TimerMode::commonModes ? NSRunLoopCommonModes : NSDefaultRunLoopMode;
    return std::make_unique<RunLoopTimer>(interval.count(), runLoopMode, std::move(action));
}

std::unique_ptr<SerialQueue> AppKitMainLoop::makeSerialQueue(const std::string& label) {
    return std::make_unique<DispatchQueue>(label);
}

} // namespace lumora::platform::macos_backend
