#include "webhost/navigation_policy.h"

#include "config/session_details.h"
#include "support/url.h"
#include "webhost/join_url.h"
#include "webhost/local_pages.h"
#include "webhost/view_controller.h"

namespace lumora {

namespace {

using platform::NavigationType;

bool isGuarded(const platform::NavigationAction& action) {
    return action.type == NavigationType::reload ||
           (action.type == NavigationType::other && action.sourceFrameIsMainFrame);
}

NavigationVerdict judgeGuarded(const std::optional<std::string>& url,
                               const std::optional<std::string>& webServerName) {
    // The server's name anywhere in the address will do: customers' portals hand it on in paths and queries.
    if (webServerName && url && url->find(*webServerName) != std::string::npos)
        return NavigationVerdict::allow;
    return url && namesLocalPage(*url) ? NavigationVerdict::allow : NavigationVerdict::cancel;
}

} // namespace

NavigationVerdict judgeNavigation(const platform::NavigationAction& action,
                                  const std::optional<std::string>& webServerName) {
    if (isGuarded(action))
        return judgeGuarded(action.url, webServerName);
    const bool isDeepLink = action.url && urlScheme(*action.url) == kDeepLinkScheme;
    return isDeepLink ? NavigationVerdict::openDeepLink : NavigationVerdict::allow;
}

platform::NavigationPolicy ViewController::decidePolicyFor(const platform::NavigationAction& action) {
    const auto server =
        isWebServerConfigured() ? SessionDetails::getInstance().webServerName() : std::nullopt;
    switch (judgeNavigation(action, server)) {
    case NavigationVerdict::allow:
        if (action.type != NavigationType::reload && action.type != NavigationType::other)
            reloadOnce_.customerGoesTo(action.url);
        // It says that the application keeps trying, which a page that has loaded may have ended long ago.
        if (server && action.type == NavigationType::backForward && action.url && isOfflinePage(*action.url))
            NetworkMonitor::shared().startMonitoringReachability(joinUrl());
        return platform::NavigationPolicy::allow;
    case NavigationVerdict::openDeepLink:
        handleDeepLink(*action.url);
        return platform::NavigationPolicy::cancel;
    case NavigationVerdict::cancel:
        break;
    }
    return platform::NavigationPolicy::cancel;
}

void ViewController::createWebViewFor(const platform::NavigationAction& action) {
    if (action.hasTargetFrame || !action.url)
        return;
    platform::PageRequest request;
    request.url = *action.url;
    webView().load(request);
}

} // namespace lumora
