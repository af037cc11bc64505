#pragma once

#include <string_view>

namespace lumora {

/// The bundle's own pages, resources of type "html".
inline constexpr const char* kNoInternetPage = "NoInternetPage";
inline constexpr const char* kMisconfigurationPage = "MisconfigurationPage";

/// Whether an address contains the file name of a local page, wherever that page may lie.
[[nodiscard]] bool namesLocalPage(std::string_view url);

/// Whether the address is that of a local page.
[[nodiscard]] bool isLocalPage(std::string_view url);
[[nodiscard]] bool isOfflinePage(std::string_view url);

} // namespace lumora
