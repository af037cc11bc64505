#pragma once

#include <string>
#include <string_view>

namespace lumora {

/// What a 200 answer of an update check changes in the session record. A member is used only if it has the type that
/// its use needs; what is missing keeps its earlier value, and an answer that is no JSON changes nothing.
/// Any thread; logs the answer under the operation's name before it is used.

/// The agent's check: "representation" / "AGENT".
void applyAgentAnswer(std::string_view operation, const std::string& body);

/// This application's check: "representation". When an update is known to be needed afterwards, by this answer or by
/// an earlier one, staging it begins.
void applyLumoraAnswer(std::string_view operation, const std::string& body);

} // namespace lumora
