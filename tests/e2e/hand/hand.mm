// A hand in the application's own process, for the end-to-end tests: put there by the loader, it does at the
// windows what a person does, and tells what is seen there. README.md says why, and what it can be asked.

#include "line_server.h"
#include "requests.h"

#import <AppKit/AppKit.h>
#include <dispatch/dispatch.h>

#include <cstdlib>
#include <future>
#include <memory>
#include <string>
#include <thread>

#include <unistd.h>

namespace {

using namespace lumora::hand;

NSData* bytesOf(const std::string& text) { return [NSData dataWithBytes:text.data() length:text.size()]; }

std::string textOf(NSDictionary* answer) {
    NSData* json = [NSJSONSerialization dataWithJSONObject:answer options:0 error:nullptr];
    return {static_cast<const char*>(json.bytes), json.length};
}

// On the main thread, for windows are its own; from the thread that serves.
Outcome performed(NSDictionary* request) {
    const auto outcome = std::make_shared<std::promise<Outcome>>();
    dispatch_async(dispatch_get_main_queue(), ^{
        outcome->set_value(perform(request));
    });
    return outcome->get_future().get();
}

// The answer goes out before the deed is done: the deed may be the process's end.
void serve(const std::string& path) {
    serveLines(path, [](const std::string& line, const auto& answer) {
        @autoreleasepool {
            id request = [NSJSONSerialization JSONObjectWithData:bytesOf(line) options:0 error:nullptr];
            if (![request isKindOfClass:[NSDictionary class]])
                return answer(textOf(@{@"error" : @"not a request"}));
            const Outcome outcome = performed(request);
            answer(textOf(outcome.answer));
            if (outcome.deed != nil)
                dispatch_async(dispatch_get_main_queue(), outcome.deed);
        }
    });
}

// What the application starts must not have a hand too.
[[gnu::constructor]] void takeHold() {
    ::unsetenv("DYLD_INSERT_LIBRARIES");
    if (const char* const sockets = std::getenv("LUMORA_HAND_SOCKETS"))
        std::thread(serve, std::string(sockets) + "." + std::to_string(::getpid())).detach();
}

} // namespace
