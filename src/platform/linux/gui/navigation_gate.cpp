#include "platform/linux/gui/navigation_gate.h"

#include <utility>

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

std::string filterFolder() {
    const CharPointer folder(
        g_build_filename(g_get_user_cache_dir(), g_get_prgname(), "content-filters", nullptr));
    return folder.get();
}

std::string withoutQueryAndFragment(const std::string& uri) { return uri.substr(0, uri.find_first_of("?#")); }

} // namespace

NavigationGate::NavigationGate(WebKitWebView* view, LoadTracker& tracker, const std::string& deepLinkScheme,
                               std::function<WebViewDelegate*()> delegate)
    : view_(view), tracker_(tracker), delegate_(std::move(delegate)),
      topFrameFilter_(webkit_web_view_get_user_content_manager(view), filterFolder(),
                      [this] { filterSettled(); }),
      // Whatever the answer, the engine cannot load it; the delegate does what is to be done.
      frameDeepLinks_(view, deepLinkScheme,
                      [this](const std::string& uri) { static_cast<void>(askForFrame(uri)); }),
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
    if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE)
        return self->decideResponse(WEBKIT_RESPONSE_POLICY_DECISION(decision)) ? kDecided : kEngineDecides;
    auto* navigation = WEBKIT_NAVIGATION_POLICY_DECISION(decision);
    if (self->topFrameFilter_.isSettled())
        self->decide(navigation, type);
    else
        self->held_.push_back({ObjectRef<WebKitNavigationPolicyDecision>::retain(navigation), type});
    return kDecided;
}

void NavigationGate::filterSettled() {
    for (const HeldDecision& held : std::exchange(held_, {}))
        decide(held.decision.get(), held.type);
}

void NavigationGate::decide(WebKitNavigationPolicyDecision* decision, WebKitPolicyDecisionType type) {
    if (type == WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION)
        decideNewWindow(decision);
    else
        decideNavigation(decision);
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
    else if (frameDeepLinks_.isDeepLink(uri) && webkit_navigation_action_is_redirect(engineAction) != FALSE)
        carryOut(policyDecision, askForFrame(uri), uri); // it never comes to be asked for
    else
        decideOfAnyFrame(policyDecision, action);
}

void NavigationGate::decideOfAnyFrame(WebKitPolicyDecision* decision, const NavigationAction& action) {
    const std::string uri = action.url.value_or("");
    const NavigationPolicy forMainFrame = ask(action);
    if (frameDeepLinks_.isDeepLink(uri))
        frameDeepLinks_.letGo(uri, forMainFrame);
    if (forMainFrame == NavigationPolicy::allow || blanking_.address == withoutQueryAndFragment(uri)) {
        carryOut(decision, forMainFrame, uri);
        return;
    }
    topFrameFilter_.setActive(true);
    framesOnly_.insert(uri);
    letGoForFramesOnly_ = true;
    tracker_.policyCancelled(uri);
    webkit_policy_decision_use(decision);
}

NavigationPolicy NavigationGate::askForFrame(const std::string& uri) const {
    return ask({NavigationType::other, uri, false, true});
}

bool NavigationGate::committed(const std::string& uri, const std::string& before) {
    frameDeepLinks_.forget();
    const bool mustNotStand = framesOnly_.contains(uri);
    framesOnly_.clear();
    if (mustNotStand)
        blanking_ = {before, withoutQueryAndFragment(uri)};
    else if (uri != blanking_.page)
        blanking_ = {};
    return mustNotStand;
}

// A link or form that asks for a new window. When it may, the engine asks for the window next. A script's request for one
// goes there directly.
void NavigationGate::decideNewWindow(WebKitNavigationPolicyDecision* decision) {
    NavigationAction action = describe(webkit_navigation_policy_decision_get_navigation_action(decision));
    action.hasTargetFrame = false;
    carryOut(WEBKIT_POLICY_DECISION(decision), ask(action), action.url.value_or(""));
}

bool NavigationGate::decideResponse(WebKitResponsePolicyDecision* decision) {
    const std::string uri =
        textOf(webkit_uri_request_get_uri(webkit_response_policy_decision_get_request(decision)));
    if (!framesOnly_.contains(uri) ||
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
    framesOnly_.erase(uri);
    letGoForFramesOnly_ = false;
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
