#include "platform/macos/web/web_delegate.h"

#include "platform/macos/foundation/text.h"
#include "support/characters.h"
#include "support/exception_guard.h"
#include "webhost/server_trust.h"

#import <Security/Security.h>

using namespace lumora;
using namespace lumora::platform;
using macos_backend::errorOf;
using macos_backend::textOf;

namespace {

static_assert(WKNavigationTypeLinkActivated == static_cast<int>(NavigationType::linkActivated) &&
              WKNavigationTypeFormResubmitted == static_cast<int>(NavigationType::formResubmitted));
static_assert(NSURLSessionAuthChallengeUseCredential == static_cast<int>(ChallengeAnswer::useCredential) &&
              NSURLSessionAuthChallengeCancelAuthenticationChallenge ==
                  static_cast<int>(ChallengeAnswer::cancel));

NavigationAction describe(WKNavigationAction* action) {
    const bool isOther = action.navigationType == WKNavigationTypeOther;
    NSURL* url = action.request.URL;
    // A load that the host asked for may come without a source frame: it is the target's own.
    WKFrameInfo* source = action.sourceFrame != nil ? action.sourceFrame : action.targetFrame;
    return {isOther ? NavigationType::other : static_cast<NavigationType>(action.navigationType),
            url == nil ? std::nullopt : std::optional(textOf(url.absoluteString)), source.mainFrame == YES,
            action.targetFrame != nil};
}

// Of any string, also of one that UTF-8 proper cannot hold.
std::string exactTextOf(NSString* text) {
    std::u16string units(text.length, u'\0');
    [text getCharacters:reinterpret_cast<unichar*>(units.data()) range:NSMakeRange(0, units.size())];
    return utf8OfUtf16(units);
}

LoadJournal::Navigation nameOf(WKNavigation* navigation) { return (__bridge const void*)navigation; }

} // namespace

@implementation LumoraWebDelegate

- (void)userContentController:(WKUserContentController*)controller
      didReceiveScriptMessage:(WKScriptMessage*)message {
    if (host == nullptr)
        return;
    ScriptMessage received{textOf(message.name), std::nullopt};
    if ([message.body isKindOfClass:[NSString class]])
        received.stringBody = exactTextOf(message.body);
    guarded(__func__, [&] { host->didReceiveScriptMessage(received); });
}

- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationAction:(WKNavigationAction*)action
                    decisionHandler:(void (^)(WKNavigationActionPolicy))decisionHandler {
    NavigationAction asked = describe(action);
    const std::string address = asked.url.value_or("");
    if (asked.url)
        asked.url = journal.asWritten(address);
    bool allowed = false;
    guarded(__func__, [&] { allowed = host->decidePolicyFor(asked) == NavigationPolicy::allow; });
    if (action.targetFrame.mainFrame)
        journal.policyDecided(address, allowed);
    decisionHandler(allowed ? WKNavigationActionPolicyAllow : WKNavigationActionPolicyCancel);
}

- (WKWebView*)webView:(WKWebView*)webView
    createWebViewWithConfiguration:(WKWebViewConfiguration*)configuration
               forNavigationAction:(WKNavigationAction*)action
                    windowFeatures:(WKWindowFeatures*)windowFeatures {
    windowRequest = action.request;
    guarded(__func__, [&] { host->createWebViewFor(describe(action)); });
    windowRequest = nil;
    return nil;
}

- (void)webView:(WKWebView*)webView didStartProvisionalNavigation:(WKNavigation*)navigation {
    journal.started(nameOf(navigation));
}

- (void)webView:(WKWebView*)webView didCommitNavigation:(WKNavigation*)navigation {
    journal.committed(nameOf(navigation), textOf(webView.URL.absoluteString));
}

- (void)webView:(WKWebView*)webView
    didFailProvisionalNavigation:(WKNavigation*)navigation
                       withError:(NSError*)error {
    if (const auto failure = journal.failed(nameOf(navigation), errorOf(error)))
        guarded(__func__, [&] { host->didFailProvisionalNavigation(*failure); });
}

- (void)webView:(WKWebView*)webView didFailNavigation:(WKNavigation*)navigation withError:(NSError*)error {
    if (const auto failure = journal.failed(nameOf(navigation), errorOf(error)))
        guarded(__func__, [&] { host->didFailNavigation(*failure); });
}

- (void)webViewWebContentProcessDidTerminate:(WKWebView*)webView {
    guarded(__func__, [&] { host->webContentProcessDidTerminate(journal.processEnded()); });
}

- (void)webView:(WKWebView*)webView
    didReceiveAuthenticationChallenge:(NSURLAuthenticationChallenge*)challenge
                    completionHandler:
                        (void (^)(NSURLSessionAuthChallengeDisposition, NSURLCredential*))completionHandler {
    NSURLProtectionSpace* space = challenge.protectionSpace;
    SecTrustRef trust = space.serverTrust;
    const auto evaluate = [trust]() -> std::optional<Error> {
        CFErrorRef failure = nullptr;
        if (SecTrustEvaluateWithError(trust, &failure))
            return std::nullopt;
        return errorOf((__bridge_transfer NSError*)failure);
    };
    const bool isOfServer = [space.authenticationMethod isEqualToString:NSURLAuthenticationMethodServerTrust];
    const ChallengeAnswer answer = answerTo({isOfServer, trust != nullptr, evaluate}, *host);
    completionHandler(static_cast<NSURLSessionAuthChallengeDisposition>(answer),
                      answer == ChallengeAnswer::useCredential ? [NSURLCredential credentialForTrust:trust]
                                                               : nil);
}

@end
