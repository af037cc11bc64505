#pragma once

#include "platform/linux/gui/frame_deep_links.h"
#include "platform/linux/gui/load_tracker.h"
#include "platform/linux/gui/top_frame_filter.h"
#include "platform/web_view.h"

#include <webkit/webkit.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace lumora::platform::linux_backend {

/// Carries the engine's navigation questions to the delegate and its answers back.
///
/// The host's own loads were judged before they were asked for and pass. For a navigation of type "other" that some frame
/// of the page began, the engine does not say which frame: it is judged as the main frame's, and a "cancel" is carried out
/// by the filter that stops the top frame only. Where that cannot be had, the top frame's answer is refused, before
/// anything of it is shown; so are addresses that need no server but have an answer (blob:), which get past the filter.
class NavigationGate {
  public:
    /// @param deepLinkScheme  a scheme that the engine cannot load and of which the delegate is told for every frame
    NavigationGate(WebKitWebView* view, LoadTracker& tracker, const std::string& deepLinkScheme,
                   std::function<WebViewDelegate*()> delegate);
    NavigationGate(const NavigationGate&) = delete;
    NavigationGate& operator=(const NavigationGate&) = delete;

    /// The delegate's answer to a load that the host is about to ask for.
    [[nodiscard]] NavigationPolicy judgeOwnLoad(const std::string& uri) const;

    /// Whether the newest navigation was let go for frames only. Was it the page's, then what the page was still loading
    /// has been cancelled for nothing: the engine does that before the filter comes into play.
    [[nodiscard]] bool letGoForFramesOnly() const { return letGoForFramesOnly_; }

    /// A page stands in place of another.
    /// @return whether it must not: a blank one (about:) needs neither server nor answer, and gets past everything.
    [[nodiscard]] bool committed(const std::string& uri, const std::string& before);

  private:
    struct HeldDecision {
        ObjectRef<WebKitNavigationPolicyDecision> decision;
        WebKitPolicyDecisionType type;
    };

    /// A page that a blank one took the place of, and the blank one's address. Shown again it would only do the same:
    /// from then on such an address is refused to it, its frames included.
    struct Blanking {
        std::string page;
        std::string address;
    };

    static gboolean decidePolicy(WebKitWebView* view, WebKitPolicyDecision* decision,
                                 WebKitPolicyDecisionType type, gpointer self);
    static GtkWidget* create(WebKitWebView* view, WebKitNavigationAction* action, gpointer self);

    void decide(WebKitNavigationPolicyDecision* decision, WebKitPolicyDecisionType type);
    void filterSettled();
    void decideNavigation(WebKitNavigationPolicyDecision* decision);
    void decideNewWindow(WebKitNavigationPolicyDecision* decision);
    void decideOfAnyFrame(WebKitPolicyDecision* decision, const NavigationAction& action);
    [[nodiscard]] NavigationPolicy askForFrame(const std::string& uri) const;
    [[nodiscard]] bool decideResponse(WebKitResponsePolicyDecision* decision);

    [[nodiscard]] NavigationPolicy ask(const NavigationAction& action) const;
    void carryOut(WebKitPolicyDecision* decision, NavigationPolicy policy, const std::string& uri);
    [[nodiscard]] bool surelyMainFrame(const std::string& uri) const;

    WebKitWebView* view_;
    LoadTracker& tracker_;
    std::function<WebViewDelegate*()> delegate_;
    std::vector<HeldDecision> held_; ///< until the filter is settled
    TopFrameFilter topFrameFilter_;
    bool letGoForFramesOnly_ = false;
    std::set<std::string> framesOnly_; ///< addresses that were let go, but not for the top frame
    Blanking blanking_;
    FrameDeepLinks frameDeepLinks_;
    SignalConnections signals_;
};

} // namespace lumora::platform::linux_backend
