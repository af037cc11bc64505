#pragma once

#include <functional>
#include <string>

namespace lumora::contract {

/// Runs the body in a forked process and returns what it reports: empty text is success. A crash, a non-zero exit and
/// a body that outlives the deadline are reported as such. For bodies that change their process: streams, user,
/// descriptor limits.
[[nodiscard]] std::string inChild(const std::function<std::string()>& body);

/// The same as an ordinary user (the superuser's rights would hide what a test looks for).
[[nodiscard]] std::string inChildAsOrdinaryUser(const std::function<std::string()>& body);

} // namespace lumora::contract
