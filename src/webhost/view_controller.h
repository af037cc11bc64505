#pragma once

#include "api/network_monitor.h"
#include "bridge/native_message_handler.h"
#include "platform/main_loop.h"
#include "platform/web_view.h"
#include "webhost/reload_once.h"
#include "webhost/revival_limit.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace lumora {

/// The content of the application's only window: decides which page it shows, answers the web view's questions, and
/// connects the page with the bridge and the network monitor. It caches nothing: every operation reads the session
/// record afresh. What it remembers keeps failures from going round for ever. Its sources: join_page.cpp,
/// navigation_policy.cpp, load_errors.cpp, process_loss.cpp, deep_links.cpp. Main thread.
class ViewController final : public platform::WebViewDelegate,
                             public NativeMessageHandlerDelegate,
                             public NetworkMonitorDelegate {
  public:
    using Clock = RevivalLimit::Clock;

    explicit ViewController(std::function<Clock::time_point()> now = &Clock::now) : now_(std::move(now)) {}
    ~ViewController() override;
    ViewController(const ViewController&) = delete;
    ViewController& operator=(const ViewController&) = delete;

    /// Builds the web view, registers the message names and starts loading. Called once.
    void viewDidLoad();

    /// Whether server and path are known; blanks alone are not.
    [[nodiscard]] bool isWebServerConfigured() const;

    /// Loads the join page, or shows the misconfiguration page when it has no address.
    void loadJoinPageURl();

    /// The two local pages; nothing happens when the bundle lacks the page.
    void loadMisconfigurationPage();
    void loadStaticNoInternetPage();

    /// Any failed load, whatever its reason: one reload attempt, the offline page, and the monitor watches.
    void handleWebViewError(const platform::Error& error);

    /// Hands an address of the service's own scheme to the operating system.
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

    /// A failed load; but a local page comes back by itself, unless its process keeps dying.
    void webContentProcessDidTerminate(const std::string& url) override;

  private:
    [[nodiscard]] platform::WebView& webView(); ///< its absence is a programming error and stops the process
    void showResourcePage(std::string name);
    void reviveLocalPage(std::string page);
    void showRevived(std::string page);

    std::unique_ptr<platform::WebView> webView_;
    ReloadOnce reloadOnce_; ///< of failed loads
    std::function<Clock::time_point()> now_;
    RevivalLimit reloadsAfterLoss_; ///< of pages whose process died, as failed loads
    RevivalLimit revivals_;         ///< of local pages that died again at once
    std::optional<Clock::time_point> revivedAt_;
    std::unique_ptr<platform::Timer> revival_; ///< while a local page that keeps dying is left in peace
};

} // namespace lumora
