#pragma once

#include "support/exception_guard.h"

#include <string_view>
#include <utility>

namespace lumora {

/// Tells other processes, by a distributed notification, that the agent could not be installed or started. Any thread.
void postAgentNotStarted();

/// Runs an operation's body. An exception ends the body there, is logged under the operation's name, and told to
/// other processes.
template <class Body>
void guardedTellingOthers(std::string_view operation, Body&& body) {
    if (!guarded(operation, std::forward<Body>(body)))
        postAgentNotStarted();
}

} // namespace lumora
