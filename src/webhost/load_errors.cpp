#include "config/session_details.h"
#include "support/log.h"
#include "support/rendering.h"
#include "support/url.h"
#include "webhost/join_url.h"
#include "webhost/local_pages.h"
#include "webhost/view_controller.h"

#include <utility>

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
        if (showsPages)
            reloadOnce(url, error);
    }
    // Right after the reload: the customer sees this page while the reload is pending.
    if (showsPages)
        loadStaticNoInternetPage();
    NetworkMonitor::shared().startMonitoringReachability(url);
    print("URL NetTest : {}", url);
}

void ViewController::reloadOnce(const std::string& url, const platform::Error& error) {
    // Of many that the customer asks for nothing is heard again: they are a frame's, or never begin.
    if (customersAddress_ && error.failingUrl == std::exchange(customersAddress_, std::nullopt))
        reloadAttempted_ = false;
    // An engine may report this reload as failed when the offline page takes its place. Another reload then would
    // go round for ever.
    if (std::exchange(reloadAttempted_, true))
        return;
    webView().load(joinRequest(url));
}

} // namespace lumora
