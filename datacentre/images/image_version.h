#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace datacentre {

/// The CFBundleShortVersionString of the bundle inside an image. An image stores files unpacked and in one piece, so
/// the property list can be found in it as it is. Nothing when there is no image or no version in it.
[[nodiscard]] std::optional<std::string> imageVersion(const std::filesystem::path& image);

/// Replaces the version in an XML property list's text. Throws std::runtime_error when the text has none.
[[nodiscard]] std::string withVersion(std::string_view propertyList, std::string_view version);

/// True when `installed` is older than `offered`, part by part as numbers ("9.10" is newer than "9.9"), or is no
/// version at all: an application that cannot tell its agent's version needs a new one.
[[nodiscard]] bool isOlder(std::string_view installed, std::string_view offered);

} // namespace datacentre
