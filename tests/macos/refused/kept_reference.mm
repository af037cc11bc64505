#import <Foundation/Foundation.h>
#include <functional>

template <class Operation> auto run(const Operation& operation) { return operation(); }

void call(NSOperationQueue* queue, std::function<void()> completion) {
    run([&] {
        [queue addOperationWithBlock:^{
            completion();
        }];
    });
    run([&]() -> bool {
        void (^later)(NSData*, void (^)(int)) = ^(NSData* data, void (^)(int)) {
            completion();
        };
        later(nil, nil);
        return true;
    });
    run([&, completion] {
        [queue addOperationWithBlock:^{
            completion();
        }];
    }); // this one is right
}
