#include "platform/macos/web/webkit_view.h"

#include "platform/macos/addresses.h"
#include "platform/macos/foundation/objc_exceptions.h"
#include "platform/macos/web/web_delegate.h"

namespace lumora::platform::macos_backend {

namespace {

bool isFile(const std::string& address, NSURL* file) {
    NSURL* url = addressFrom(address);
    return url.fileURL && [url.path isEqualToString:file.path];
}

/// What went wrong with a script. Of an exception the engine's own description tells no more than that there
/// was one.
Error scriptErrorOf(NSError* error) {
    Error failure = errorOf(error);
    id message = [error.userInfo objectForKey:@"WKJavaScriptExceptionMessage"]; // no header names it
    if ([message isKindOfClass:[NSString class]])
        failure.localizedDescription = textOf(message);
    return failure;
}

class WebKitView final : public WebView {
  public:
    explicit WebKitView(WKWebView* view) : view_(view) {}
    ~WebKitView() override { setDelegate(nullptr); }
    WebKitView(const WebKitView&) = delete;
    WebKitView& operator=(const WebKitView&) = delete;

    void addScriptMessageHandler(const std::string& name) override {
        atPort([&] { [messages() addScriptMessageHandler:engineDelegate_ name:nsString(name)]; });
    }

    void removeScriptMessageHandler(const std::string& name) override {
        atPort([&] { [messages() removeScriptMessageHandlerForName:nsString(name)]; });
    }

    void setDelegate(WebViewDelegate* delegate) override {
        engineDelegate_->host = delegate;
        view_.UIDelegate = delegate == nullptr ? nil : engineDelegate_;
        view_.navigationDelegate = delegate == nullptr ? nil : engineDelegate_;
    }

    void load(const PageRequest& request) override {
        atPort([&] {
            NSURLRequestCachePolicy policy = request.cachePolicy == HttpCachePolicy::returnCacheDataElseLoad
                                                 ? NSURLRequestReturnCacheDataElseLoad
                                                 : NSURLRequestUseProtocolCachePolicy;
            NSURLRequest* asked =
                [NSURLRequest requestWithURL:addressFrom(request.url)
                                 cachePolicy:policy
                             timeoutInterval:static_cast<NSTimeInterval>(request.timeout.count())];
            // What a page asks a window for is loaded as it was asked: method, body and headers.
            NSURLRequest* ofWindow = engineDelegate_->windowRequest;
            if (ofWindow != nil && textOf(ofWindow.URL.absoluteString) == request.url)
                asked = ofWindow;
            begun([view_ loadRequest:asked], request.url);
        });
    }

    void loadFile(const std::string& path, const std::string& readAccessFolder) override {
        atPort([&] {
            NSURL* file = [NSURL fileURLWithPath:nsString(path)];
            const auto wish = engineDelegate_->journal.hostWishesFor(
                [file](const std::string& address) { return isFile(address, file); });
            if (wish == LoadJournal::Wish::stopLoading)
                [view_ stopLoading];
            if (wish != LoadJournal::Wish::load)
                return;
            begun([view_ loadFileURL:file
                      allowingReadAccessToURL:[NSURL fileURLWithPath:nsString(readAccessFolder)
                                                         isDirectory:YES]],
                  textOf(file.absoluteString));
        });
    }

    [[nodiscard]] std::string address() override { return engineDelegate_->journal.newest(); }

    void evaluateJavaScript(const std::string& script,
                            std::function<void(std::optional<Error>)> completion) override {
        atPort([&, completion] { // the block would keep a mere reference otherwise
            [view_ evaluateJavaScript:nsString(script)
                    completionHandler:^(id, NSError* error) {
                        completion(error == nil ? std::nullopt : std::optional(scriptErrorOf(error)));
                    }];
        });
    }

  private:
    WKUserContentController* messages() const { return view_.configuration.userContentController; }

    void begun(WKNavigation* navigation, const std::string& written) {
        // From now on the view tells the address in the engine's own form.
        engineDelegate_->journal.hostLoads((__bridge const void*)navigation, textOf(view_.URL.absoluteString),
                                           written);
    }

    WKWebView* view_;
    LumoraWebDelegate* engineDelegate_ = [[LumoraWebDelegate alloc] init];
};

} // namespace

std::unique_ptr<WebView> portOver(WKWebView* view) { return std::make_unique<WebKitView>(view); }

} // namespace lumora::platform::macos_backend
