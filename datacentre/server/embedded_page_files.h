#pragma once

#include <optional>
#include <string_view>

namespace datacentre {

/// The join page's files ("join.html", "join.css", "join.js", "drive.js", "icon.svg"), put into the program by the
/// build. Nothing for an unknown name. The text lives as long as the program.
[[nodiscard]] std::optional<std::string_view> embeddedPageFile(std::string_view name);

} // namespace datacentre
