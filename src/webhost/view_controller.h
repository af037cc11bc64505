#pragma once

#include "api/network_monitor.h"
#include "bridge/native_message_handler.h"
#include "platform/web_view.h"

#include <memory>
#include <string>

namespace lumora {

/// The content of the application's only window: decides which page it shows, answers the web view's questions, and
/// connects the page with the bridge and the network monitor. It caches nothing: every operation reads the session
/// record afresh. Main thread.
class ViewController final : public platform::WebViewDelegate,
                             public NativeMessageHandlerDelegate,
                             public NetworkMonitorDelegate {
  public:
    ViewController() = default;
    ~ViewController() override;

    /// Builds the web view, registers the message names and starts loading. Called once.
    void viewDidLoad();

    [[nodiscard]] bool isWebServerConfigured() const;
    void loadJoinPageURl();
    void loadMisconfigurationPage();
    void loadStaticNoInternetPage();
    void handleWebViewError(const platform::Error& error);
    void handleDeepLink(const std::string& url);

    // NetworkMonitorDelegate
    void didRestoreConnection() override;
    void didFailedToConnect() override;

    // NativeMessageHandlerDelegate
    void executeJavaScript(const std::string& script) override;
    void updateWindowTitle(const std::string& title) override;

    // platform::WebViewDelegate
    void didReceiveScriptMessage(const platform::ScriptMessage& message) override;
    platform::NavigationPolicy decidePolicyFor(const platform::NavigationAction& action) override;
    void didFailProvisionalNavigation(const platform::Error& error) override;
    void didFailNavigation(const platform::Error& error) override;
    void createWebViewFor(const platform::NavigationAction& action) override;
    void didFailServerTrust(const platform::Error& error) override;

  private:
    void showStoredTitle();
    void showResourcePage(const std::string& name);

    std::unique_ptr<platform::WebView> webView_;
};

} // namespace lumora
