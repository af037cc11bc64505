#pragma once

#include <dispatch/dispatch.h>

#import <Foundation/Foundation.h>

namespace lumora::hand {

// What a request is answered with, and what is then still to be done, on the main thread.
struct Outcome {
    NSDictionary* answer;
    dispatch_block_t deed;
};

// Main thread.
Outcome perform(NSDictionary* request);

} // namespace lumora::hand
