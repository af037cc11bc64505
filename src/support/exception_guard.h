#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace lumora {

/// Logs a caught exception in the form that support staff search for.
void logException(std::string_view operation, const std::exception& exception);

/// The guarding operation's call-stack symbols, as one line of text.
std::string callStackText();

/// Runs an operation's body. An exception ends the body there and is logged under the operation's name.
/// @return whether the body ran to its end.
template <class Body>
bool guarded(std::string_view operation, Body&& body) {
    try {
        body();
        return true;
    } catch (const std::exception& exception) {
        logException(operation, exception);
        return false;
    }
}

} // namespace lumora
