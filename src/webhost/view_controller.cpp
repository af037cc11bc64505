#include "webhost/view_controller.h"

#include "config/session_details.h"
#include "platform/ports.h"
#include "support/fatal.h"
#include "support/log.h"
#include "support/rendering.h"
#include "webhost/join_url.h"
#include "webhost/local_pages.h"
#include "webhost/window_title.h"

namespace lumora {

ViewController::~ViewController() {
    if (!webView_)
        return;
    // A name that was never registered; the registered ones stay until the view itself goes.
    webView_->removeScriptMessageHandler("jsToNative");
    if (auto& bridge = NativeMessageHandler::shared(); bridge.nativeMessageHandlerDelegate() == this)
        bridge.setNativeMessageHandlerDelegate(nullptr);
    if (auto& monitor = NetworkMonitor::shared(); monitor.networkMonitorDelegate() == this)
        monitor.setNetworkMonitorDelegate(nullptr);
}

void ViewController::viewDidLoad() {
    auto& host = *platform::ports().webViewHost;
    webView_ = host.makeWebView();
    for (const auto& name : NativeMessageHandler::messageNames())
        webView_->addScriptMessageHandler(name);
    showStoredTitle(storedTitleValues(), host.window());
    webView_->setDelegate(this);
    NativeMessageHandler::shared().setNativeMessageHandlerDelegate(this);
    if (!isWebServerConfigured()) {
        print("viewDidLoad() : ################ Critical ################\n"
              " webServerName is null or empty — Application is not configured correctly.");
        loadMisconfigurationPage();
        return;
    }
    auto& monitor = NetworkMonitor::shared();
    monitor.setNetworkMonitorDelegate(this);
    // Twice on purpose: the server's bare name takes the watch up, the join page's address replaces it.
    monitor.startMonitoringReachability(SessionDetails::getInstance().webServerName().value_or(""));
    loadJoinPageURl();
    monitor.startMonitoringReachability(joinUrl());
}

platform::WebView& ViewController::webView() {
    if (!webView_)
        fatal("the web view is used before viewDidLoad()");
    return *webView_;
}

void ViewController::executeJavaScript(const std::string& script) {
    webView().evaluateJavaScript(script, [](const std::optional<platform::Error>& error) {
        if (error) // known in this form, without a blank or colon behind the operation
            print("executeJavaScript(_:)Error sending message to webView: {}", render(*error));
    });
}

void ViewController::updateWindowTitle(const std::string& title) {
    if (auto* window = platform::ports().webViewHost->window())
        window->setTitle(title);
}

void ViewController::didReceiveScriptMessage(const platform::ScriptMessage& message) {
    NativeMessageHandler::shared().handleMessageFromWebView(message);
    // Posted by a page that has been replaced meanwhile: without the monitor nothing would take the offline page away.
    if (message.name == "lumoraLoaded" && isOfflinePage(webView().address()))
        NetworkMonitor::shared().startMonitoringReachability(joinUrl());
}

} // namespace lumora
