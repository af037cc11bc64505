#pragma once

#include "api/api_handler.h"

#include <optional>
#include <string>
#include <string_view>

namespace lumora {

/// Uses the body of a 200 answer; logs under the operation's name.
using ApplyAnswer = void (*)(std::string_view operation, const std::string& body);

/// Sends one update check in an ephemeral session of its own and returns at once.
/// @param url absent when the address did not parse: the check then fails like any other request.
/// @param completionName under which the answer's lines are logged; outlives the request.
/// @param completion told exactly once, on the session's thread, whether a 200 answer was received and applied.
void startUpdateCheck(std::optional<std::string> url, std::string_view completionName, ApplyAnswer apply,
                      ApiHandler::Completion completion);

} // namespace lumora
