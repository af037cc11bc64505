#pragma once

#include "platform/linux/gui/frame_deep_links.h"
#include "platform/linux/gui/load_tracker.h"
#include "platform/linux/gui/top_frame_filter.h"
#include "platform/web_view.h"

#include <webkit/webkit.h>

#include <functional>
#include <set>
#include <string>

namespace lumora::platform::linux_backend {

/// Carries the engine's navigation questions to the delegate and its answers back.
///
/// The host's own loads were judged before they were asked for and pass. For a navigation of type "other" that some frame
/// of the page began, the engine does not say which frame: it is judged as the main frame's, and a "cancel" is carried out
/// by the filter that stops the top frame only.
class NavigationGate {
  public:
    /// @param deepLinkScheme  a scheme that the engine cannot load and of which the delegate is told for every frame
    NavigationGate(WebKitWebView* view, LoadTracker& tracker, const std::string& deepLinkScheme,
                   std::function<WebViewDelegate*()> delegate);
    NavigationGate(const NavigationGate&) = delete;
    NavigationGate& operator=(const NavigationGate&) = delete;

    /// The delegate's answer to a load that the host is about to ask for.
    [[nodiscard]] NavigationPolicy judgeOwnLoad(const std::string& uri) const;

    /// A page stands. One that needs no server (about:, blob:) gets past the filter and is taken back here.
    void committed(const std::string& uri);

  private:
    static gboolean decidePolicy(WebKitWebView* view, WebKitPolicyDecision* decision,
                                 WebKitPolicyDecisionType type, gpointer self);
    static GtkWidget* create(WebKitWebView* view, WebKitNavigationAction* action, gpointer self);

    void decideNavigation(WebKitNavigationPolicyDecision* decision);
    void decideNewWindow(WebKitNavigationPolicyDecision* decision);
    void decideOfAnyFrame(WebKitPolicyDecision* decision, const NavigationAction& action);
    void frameAskedForDeepLink(const std::string& uri);
    [[nodiscard]] bool decideResponse(WebKitResponsePolicyDecision* decision);

    [[nodiscard]] NavigationPolicy ask(const NavigationAction& action) const;
    void carryOut(WebKitPolicyDecision* decision, NavigationPolicy policy, const std::string& uri);
    [[nodiscard]] bool surelyMainFrame(const std::string& uri) const;

    WebKitWebView* view_;
    LoadTracker& tracker_;
    std::function<WebViewDelegate*()> delegate_;
    TopFrameFilter topFrameFilter_;
    std::string subframesOnly_;           ///< the address that was last let go with the filter on
    std::set<std::string> maybeOfFrames_; ///< deep links that were let go, until a frame asks for them
    std::string deepLinkPrefix_;
    FrameDeepLinks frameDeepLinks_;
    SignalConnections signals_;
};

} // namespace lumora::platform::linux_backend
