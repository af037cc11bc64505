// Timers and queues that take blocks: to this system's runtime blocks are no objects.
#import <AppKit/AppKit.h>
#import <dispatch/dispatch.h>

#include <cstdlib>
#include <cstring>

namespace {

/// A block as the compiler lays it out.
struct BlockLayout {
    struct Descriptor {
        unsigned long reserved;
        unsigned long size;
        void (*copyCaptured)(void* copy, const void* block); ///< there by the flag
    };
    static constexpr int kHasCopier = 1 << 25;
    static constexpr int kIsGlobal = 1 << 28;

    void* kind;
    int flags;
    int reserved;
    void (*invoke)();
    const Descriptor* descriptor;
};

/// A copy that outlives the function it stands in, for good.
template <class Block> Block kept(Block block) {
    const auto* layout = reinterpret_cast<const BlockLayout*>(block);
    if ((layout->flags & BlockLayout::kIsGlobal) != 0)
        return block;
    void* copy = std::malloc(layout->descriptor->size);
    std::memcpy(copy, layout, layout->descriptor->size);
    if ((layout->flags & BlockLayout::kHasCopier) != 0)
        layout->descriptor->copyCaptured(copy, layout);
    return reinterpret_cast<Block>(copy);
}

} // namespace

@interface LumoraTick : NSObject {
  @public
    void (^action)(NSTimer*);
}
@end

@implementation LumoraTick
- (void)fired:(NSTimer*)timer {
    action(timer);
}
@end

#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation" // this one replaces what is there
@implementation NSTimer (Lumora)
+ (NSTimer*)timerWithTimeInterval:(NSTimeInterval)interval
                          repeats:(BOOL)repeats
                            block:(void (^)(NSTimer*))block {
    LumoraTick* tick = [[LumoraTick alloc] init];
    tick->action = kept(block);
    return [[NSTimer timerWithTimeInterval:interval
                                    target:tick
                                  selector:@selector(fired:)
                                  userInfo:nil
                                   repeats:repeats] retain];
}
@end
#pragma clang diagnostic pop

/// A queue: the main thread's, or of a thread of its own for each piece.
@interface LumoraQueue : NSObject <OS_dispatch_queue> {
  @public
    bool isMain;
}
@end

@implementation LumoraQueue
@end

@interface LumoraWork : NSObject {
  @public
    dispatch_block_t work;
}
@end

@implementation LumoraWork
- (void)run:(id)sender {
    work();
}
@end

dispatch_queue_t dispatch_get_main_queue(void) {
    static LumoraQueue* const queue = [[LumoraQueue alloc] init];
    queue->isMain = true;
    return queue;
}

dispatch_queue_t dispatch_get_global_queue(intptr_t, uintptr_t) { return [[LumoraQueue alloc] init]; }

dispatch_queue_t dispatch_queue_create(const char*, dispatch_queue_attr_t) {
    [NSException raise:NSGenericException format:@"no queue here keeps an order"];
    return nil;
}

void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) {
    LumoraWork* piece = [[LumoraWork alloc] init];
    piece->work = kept(block);
    if (static_cast<LumoraQueue*>(queue)->isMain)
        [piece performSelectorOnMainThread:@selector(run:) withObject:nil waitUntilDone:NO];
    else
        [NSThread detachNewThreadSelector:@selector(run:) toTarget:piece withObject:nil];
}
