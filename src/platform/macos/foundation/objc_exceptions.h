#pragma once

#include "platform/macos/foundation/text.h"

#include <optional>
#include <stdexcept>

namespace lumora::platform::macos_backend {

/// An Objective-C exception, as the core's guards catch it: its description is the exception's own.
class ObjectiveCException : public std::runtime_error {
  public:
    explicit ObjectiveCException(NSException* exception)
        : std::runtime_error(textOf(exception.description)) {}
};

/// Runs one operation of a port with an autorelease pool of its own. An Objective-C exception in it leaves as
/// the core's kind, thrown when the Objective-C handler is over.
template <class Operation> auto atPort(const Operation& operation) {
    std::optional<ObjectiveCException> raised;
    @autoreleasepool {
        @try {
            return operation();
        } @catch (NSException* exception) {
            raised.emplace(exception);
        }
    }
    throw *raised;
}

} // namespace lumora::platform::macos_backend
