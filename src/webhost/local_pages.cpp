#include "webhost/local_pages.h"

#include <algorithm>
#include <array>
#include <string>

namespace lumora {

bool namesLocalPage(std::string_view url) {
    constexpr std::array kPages{kNoInternetPage, kMisconfigurationPage};
    return std::ranges::any_of(kPages, [url](const char* page) {
        return url.find(std::string(page) + ".html") != std::string_view::npos;
    });
}

bool isLocalPage(std::string_view url) { return url.starts_with("file:") && namesLocalPage(url); }

bool isOfflinePage(std::string_view url) {
    return isLocalPage(url) && url.find(kNoInternetPage) != std::string_view::npos;
}

} // namespace lumora
