#include "platform/linux/gui/navigation_gate.h"

namespace lumora::platform::linux_backend {

namespace {

constexpr gboolean kDecided = TRUE;
constexpr gboolean kEngineDecides = FALSE;

NavigationType typeOf(WebKitNavigationType type) {
    switch (type) {
    case WEBKIT_NAVIGATION_TYPE_LINK_CLICKED:
        return NavigationType::linkActivated;
    case WEBKIT_NAVIGATION_TYPE_FORM_SUBMITTED:
        return NavigationType::formSubmitted;
    case WEBKIT_NAVIGATION_TYPE_BACK_FORWARD:
        return NavigationType::backForward;
    case WEBKIT_NAVIGATION_TYPE_RELOAD:
        return NavigationType::reload;
    case WEBKIT_NAVIGATION_TYPE_FORM_RESUBMITTED:
        return NavigationType::formResubmitted;
    case WEBKIT_NAVIGATION_TYPE_OTHER:
        break;
    }
    return NavigationType::other;
}

std::optional<std::string> addressOf(WebKitNavigationAction* action) {
    const char* uri = webkit_uri_request_get_uri(webkit_navigation_action_get_request(action));
    return uri == nullptr ? std::nullopt : std::optional<std::string>(uri);
}

NavigationAction describe(WebKitNavigationAction* action) {
    return {typeOf(webkit_navigation_action_get_navigation_type(action)), addressOf(action), true, true};
}

} // namespace

NavigationGate::NavigationGate(WebKitWebView* view, LoadTracker& tracker, const std::string& deepLinkScheme,
                               std::function<WebViewDelegate*()> delegate)
    : view_(view), tracker_(tracker), delegate_(std::move(delegate)),
      topFrameFilter_(webkit_web_view_get_user_content_manager(view)), deepLinkPrefix_(deepLinkScheme + ":"),
      frameDeepLinks_(webkit_web_view_get_context(view), deepLinkScheme,
                      [this](const std::string& uri) { frameAskedForDeepLink(uri); }),
      signals_(view) {
    signals_.connect("decide-policy", &NavigationGate::decidePolicy, this);
    signals_.connect("create", &NavigationGate::create, this);
}

NavigationPolicy NavigationGate::judgeOwnLoad(const std::string& uri) const {
    return ask({NavigationType::other, uri, true, true});
}

gboolean NavigationGate::decidePolicy(WebKitWebView*, WebKitPolicyDecision* decision,
                                      WebKitPolicyDecisionType type, gpointer data) {
    auto* self = static_cast<NavigationGate*>(data);
    switch (type) {
    case WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION:
        self->decideNavigation(WEBKIT_NAVIGATION_POLICY_DECISION(decision));
        return kDecided;
    case WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION:
        self->decideNewWindow(WEBKIT_NAVIGATION_POLICY_DECISION(decision));
        return kDecided;
    case WEBKIT_POLICY_DECISION_TYPE_RESPONSE:
        return self->decideResponse(WEBKIT_RESPONSE_POLICY_DECISION(decision)) ? kDecided : kEngineDecides;
    }
    return kEngineDecides;
}

void NavigationGate::decideNavigation(WebKitNavigationPolicyDecision* decision) {
    WebKitNavigationAction* engineAction = webkit_navigation_policy_decision_get_navigation_action(decision);
    const NavigationAction action = describe(engineAction);
    const std::string uri = action.url.value_or("");
    auto* policyDecision = WEBKIT_POLICY_DECISION(decision);

    if (action.type != NavigationType::other) {
        carryOut(policyDecision, ask(action), uri);
        return;
    }
    switch (tracker_.navigationAsked(uri)) {
    case LoadTracker::Ownership::hosts:
        carryOut(policyDecision, NavigationPolicy::allow, uri);
        return;
    case LoadTracker::Ownership::withdrawn:
        carryOut(policyDecision, NavigationPolicy::cancel, uri);
        return;
    case LoadTracker::Ownership::notHosts:
        break;
    }
    if (surelyMainFrame(uri))
        carryOut(policyDecision, ask(action), uri);
    else
        decideOfAnyFrame(policyDecision, action);
}

void NavigationGate::decideOfAnyFrame(WebKitPolicyDecision* decision, const NavigationAction& action) {
    const std::string uri = action.url.value_or("");
    const NavigationPolicy forMainFrame = ask(action);
    if (forMainFrame == NavigationPolicy::allow || !topFrameFilter_.ready()) {
        carryOut(decision, forMainFrame, uri);
        return;
    }
    topFrameFilter_.setActive(true);
    subframesOnly_ = uri;
    if (uri.starts_with(deepLinkPrefix_))
        maybeOfFrames_.insert(uri);
    webkit_policy_decision_use(decision);
}

// Also asked for as a picture or the like: only what was decided on as a navigation counts.
void NavigationGate::frameAskedForDeepLink(const std::string& uri) {
    if (maybeOfFrames_.erase(uri) == 0)
        return;
    // Whatever the answer, the engine cannot load it; the delegate does what is to be done.
    static_cast<void>(ask({NavigationType::other, uri, false, true}));
}

void NavigationGate::committed(const std::string& uri) {
    maybeOfFrames_.clear();
    if (!subframesOnly_.empty() && uri == subframesOnly_ && webkit_web_view_can_go_back(view_) != FALSE)
        webkit_web_view_go_back(view_);
}

// A link or form that asks for a new window. When it may, the engine asks for the window next. A script's request for one
// goes there directly.
void NavigationGate::decideNewWindow(WebKitNavigationPolicyDecision* decision) {
    NavigationAction action = describe(webkit_navigation_policy_decision_get_navigation_action(decision));
    action.hasTargetFrame = false;
    carryOut(WEBKIT_POLICY_DECISION(decision), ask(action), action.url.value_or(""));
}

// The second line behind the filter, for the moment before it is compiled: by now the request has been sent.
bool NavigationGate::decideResponse(WebKitResponsePolicyDecision* decision) {
    const std::string uri =
        textOf(webkit_uri_request_get_uri(webkit_response_policy_decision_get_request(decision)));
    if (subframesOnly_.empty() || uri != subframesOnly_ ||
        webkit_response_policy_decision_is_main_frame_main_resource(decision) == FALSE)
        return false;
    carryOut(WEBKIT_POLICY_DECISION(decision), NavigationPolicy::cancel, uri);
    return true;
}

GtkWidget* NavigationGate::create(WebKitWebView*, WebKitNavigationAction* engineAction, gpointer data) {
    auto* self = static_cast<NavigationGate*>(data);
    NavigationAction action = describe(engineAction);
    action.hasTargetFrame = false;
    if (WebViewDelegate* delegate = self->delegate_())
        delegate->createWebViewFor(action);
    return nullptr;
}

NavigationPolicy NavigationGate::ask(const NavigationAction& action) const {
    WebViewDelegate* delegate = delegate_();
    return delegate == nullptr ? NavigationPolicy::allow : delegate->decidePolicyFor(action);
}

void NavigationGate::carryOut(WebKitPolicyDecision* decision, NavigationPolicy policy,
                              const std::string& uri) {
    topFrameFilter_.setActive(false);
    subframesOnly_.clear();
    if (policy == NavigationPolicy::allow) {
        webkit_policy_decision_use(decision);
        return;
    }
    tracker_.policyCancelled(uri);
    webkit_policy_decision_ignore(decision);
}

// True for main-frame redirects among others; a frame of the page never has the view's own address while it loads.
bool NavigationGate::surelyMainFrame(const std::string& uri) const {
    return webkit_web_view_is_loading(view_) != FALSE && uri == textOf(webkit_web_view_get_uri(view_));
}

} // namespace lumora::platform::linux_backend
