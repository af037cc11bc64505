#pragma once

#include <string>
#include <string_view>

namespace lumora {

/// Joins two pieces of a path as path components: one slash between them, runs of slashes folded into one, none at
/// the end. Plain concatenation, which keeps every slash, is what most paths of this application use instead.
[[nodiscard]] std::string appendPathComponent(std::string_view path, std::string_view component);

/// The last component of a path: "Ovra.app" of "/a/Ovra.app/".
[[nodiscard]] std::string lastPathComponent(std::string_view path);

} // namespace lumora
