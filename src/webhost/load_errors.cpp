#include "config/session_details.h"
#include "support/log.h"
#include "support/rendering.h"
#include "support/url.h"
#include "webhost/join_url.h"
#include "webhost/local_pages.h"
#include "webhost/view_controller.h"

namespace lumora {

void ViewController::didFailProvisionalNavigation(const platform::Error& error) { handleWebViewError(error); }

void ViewController::didFailNavigation(const platform::Error& error) {
    print("webView(_:didFail:withError:) : Page failed to load with error: {}", error.localizedDescription);
    handleWebViewError(error);
}

void ViewController::didFailServerTrust(const platform::Error& error) {
    print("webView(_:didReceive:completionHandler:) : Server trust evaluation failed: {}",
          render(std::optional(error)));
}

void ViewController::handleWebViewError(const platform::Error& error) {
    // A local page that failed would fail again at once: it is left alone, and nothing is reloaded over it.
    const bool showsPages = !(error.failingUrl && isLocalPage(*error.failingUrl));
    if (!isWebServerConfigured()) {
        print("handleWebViewError(_:) : webServerName is null or empty — showing misconfiguration page "
              "instead of retrying.");
        if (showsPages)
            loadMisconfigurationPage();
        return;
    }
    const std::string url = joinUrl();
    const bool hasToken = SessionDetails::getInstance().lumoraToken().has_value(); // an empty one counts
    if (hasToken) { // without one the monitor alone brings the page back
        if (!parseUrl(url)) {
            print("handleWebViewError(_:) : Invalid URL Given For Running Network Monitor: {}", url);
            if (showsPages)
                loadMisconfigurationPage();
            return;
        }
        if (showsPages && reloadOnce_.allowsAfter(error.failingUrl))
            webView().load(joinRequest(url));
    }
    // Right after the reload: the customer sees this page while the reload is pending.
    if (showsPages)
        loadStaticNoInternetPage();
    NetworkMonitor::shared().startMonitoringReachability(url);
    print("URL NetTest : {}", url);
}

} // namespace lumora
