#pragma once

#include <map>
#include <string>
#include <vector>

namespace lumora::platform::linux_backend {

/// The highest preference level: pairs of launch arguments, the key behind one dash, then the value ("-DC com").
/// A key that another dash word follows, or nothing, has no value; of two equal keys the later counts.
/// @param arguments  without the program's own name
[[nodiscard]] std::map<std::string, std::string>
preferencesFromArguments(const std::vector<std::string>& arguments);

} // namespace lumora::platform::linux_backend
