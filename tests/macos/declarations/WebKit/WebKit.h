// What the macOS sources use of WebKit, as its headers declare it. For checking the sources where there is no
// macOS.
#pragma once

#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@class WKFrameInfo;
@class WKNavigation;
@class WKNavigationAction;
@class WKScriptMessage;
@class WKUserContentController;
@class WKWebView;
@class WKWebViewConfiguration;
@class WKWindowFeatures;
@protocol WKNavigationDelegate;
@protocol WKScriptMessageHandler;
@protocol WKUIDelegate;

typedef NS_ENUM(NSInteger, WKNavigationActionPolicy) {
    WKNavigationActionPolicyCancel,
    WKNavigationActionPolicyAllow,
} API_AVAILABLE(macos(10.10));

typedef NS_ENUM(NSInteger, WKNavigationType) {
    WKNavigationTypeLinkActivated,
    WKNavigationTypeFormSubmitted,
    WKNavigationTypeBackForward,
    WKNavigationTypeReload,
    WKNavigationTypeFormResubmitted,
    WKNavigationTypeOther = -1,
} API_AVAILABLE(macos(10.10));

API_AVAILABLE(macos(10.10))
@interface WKNavigation : NSObject
@end

API_AVAILABLE(macos(10.10))
@interface WKFrameInfo : NSObject <NSCopying>
@property(nonatomic, readonly, getter=isMainFrame) BOOL mainFrame;
@end

API_AVAILABLE(macos(10.10))
@interface WKNavigationAction : NSObject
@property(nonatomic, readonly, copy) WKFrameInfo* sourceFrame;
@property(nullable, nonatomic, readonly, copy) WKFrameInfo* targetFrame;
@property(nonatomic, readonly) WKNavigationType navigationType;
@property(nonatomic, readonly, copy) NSURLRequest* request;
@end

API_AVAILABLE(macos(10.10))
@interface WKScriptMessage : NSObject
@property(nonatomic, readonly, copy) id body;
@property(nonatomic, readonly, copy) NSString* name;
@end

API_AVAILABLE(macos(10.10))
@interface WKUserContentController : NSObject <NSSecureCoding>
- (void)addScriptMessageHandler:(id<WKScriptMessageHandler>)scriptMessageHandler name:(NSString*)name;
- (void)removeScriptMessageHandlerForName:(NSString*)name;
@end

API_AVAILABLE(macos(10.11))
@interface WKWebsiteDataStore : NSObject <NSSecureCoding>
+ (WKWebsiteDataStore*)defaultDataStore;
@end

API_AVAILABLE(macos(10.10))
@interface WKWebViewConfiguration : NSObject <NSSecureCoding, NSCopying>
@property(nonatomic, strong) WKUserContentController* userContentController;
@property(nonatomic, strong) WKWebsiteDataStore* websiteDataStore API_AVAILABLE(macos(10.11));
@end

API_AVAILABLE(macos(10.10))
@interface WKWebView : NSView
@property(nonatomic, readonly, copy) WKWebViewConfiguration* configuration;
@property(nullable, nonatomic, weak) id<WKNavigationDelegate> navigationDelegate;
@property(nullable, nonatomic, weak) id<WKUIDelegate> UIDelegate;
@property(nullable, nonatomic, readonly, copy) NSString* title;
@property(nullable, nonatomic, readonly, copy) NSURL* URL;
@property(nonatomic, readonly, getter=isLoading) BOOL loading;
@property(nonatomic) CGFloat magnification;
@property(nonatomic) CGFloat pageZoom API_AVAILABLE(macos(11.0));
- (instancetype)initWithFrame:(CGRect)frame
                configuration:(WKWebViewConfiguration*)configuration NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder*)coder NS_DESIGNATED_INITIALIZER;
- (nullable WKNavigation*)loadRequest:(NSURLRequest*)request;
- (nullable WKNavigation*)loadFileURL:(NSURL*)URL
              allowingReadAccessToURL:(NSURL*)readAccessURL API_AVAILABLE(macos(10.11));
- (void)stopLoading;
- (void)evaluateJavaScript:(NSString*)javaScriptString
         completionHandler:(void (^_Nullable)(_Nullable id, NSError* _Nullable error))completionHandler;
@end

API_AVAILABLE(macos(10.10))
@protocol WKScriptMessageHandler <NSObject>
@required
- (void)userContentController:(WKUserContentController*)userContentController
      didReceiveScriptMessage:(WKScriptMessage*)message;
@end

API_AVAILABLE(macos(10.10))
@protocol WKNavigationDelegate <NSObject>
@optional
- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationAction:(WKNavigationAction*)navigationAction
                    decisionHandler:(void (^)(WKNavigationActionPolicy))decisionHandler;
- (void)webView:(WKWebView*)webView didStartProvisionalNavigation:(null_unspecified WKNavigation*)navigation;
- (void)webView:(WKWebView*)webView
    didFailProvisionalNavigation:(null_unspecified WKNavigation*)navigation
                       withError:(NSError*)error;
- (void)webView:(WKWebView*)webView didCommitNavigation:(null_unspecified WKNavigation*)navigation;
- (void)webView:(WKWebView*)webView
    didFailNavigation:(null_unspecified WKNavigation*)navigation
            withError:(NSError*)error;
- (void)webView:(WKWebView*)webView
    didReceiveAuthenticationChallenge:(NSURLAuthenticationChallenge*)challenge
                    completionHandler:(void (^)(NSURLSessionAuthChallengeDisposition disposition,
                                                NSURLCredential* _Nullable credential))completionHandler;
- (void)webViewWebContentProcessDidTerminate:(WKWebView*)webView API_AVAILABLE(macos(10.11));
@end

API_AVAILABLE(macos(10.10))
@protocol WKUIDelegate <NSObject>
@optional
- (nullable WKWebView*)webView:(WKWebView*)webView
    createWebViewWithConfiguration:(WKWebViewConfiguration*)configuration
               forNavigationAction:(WKNavigationAction*)navigationAction
                    windowFeatures:(WKWindowFeatures*)windowFeatures;
@end

NS_ASSUME_NONNULL_END
