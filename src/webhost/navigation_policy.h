#pragma once

#include "platform/web_view.h"

#include <optional>
#include <string>

namespace lumora {

/// The service's own links, handed to the operating system wherever in the page they are opened.
inline constexpr const char* kDeepLinkScheme = "ovrajoin";

/// What is to become of a navigation.
enum class NavigationVerdict {
    allow,
    cancel,
    openDeepLink, ///< cancelled in the view, handed to the operating system
};

/// Decides on one navigation. Reloads, and loads of the whole page that nobody clicked for, stay on the configured
/// server and the local pages; everything else is free, in the same view.
/// @param webServerName the server in use; absent while none is configured.
[[nodiscard]] NavigationVerdict judgeNavigation(const platform::NavigationAction& action,
                                                const std::optional<std::string>& webServerName);

} // namespace lumora
