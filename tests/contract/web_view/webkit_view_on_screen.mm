#include "platform/macos/foundation/text.h"
#include "platform/macos/web/webkit_host.h"
#include "view_on_screen.h"

#import <WebKit/WebKit.h>
#include <csignal>

namespace lumora::contract {

namespace backend = platform::macos_backend;
using backend::textOf;

namespace {

/// The engine's view in a window, the one on top where there are several.
WKWebView* engineIn(NSWindow* window) {
    NSView* content = window.contentView;
    NSView* top = content.subviews.lastObject;
    return [top isKindOfClass:[WKWebView class]] ? static_cast<WKWebView*>(top) : nil;
}

class WebKitWindowOnScreen final : public WindowOnScreen {
  public:
    ~WebKitWindowOnScreen() override { [window_ close]; }

    platform::WebViewHost& host() override { return host_; }

    void open(const std::function<void()>& makeView) override {
        host_.openWindow(makeView);
        for (NSWindow* window in [NSApp windows])
            if ([window isVisible] && engineIn(window) != nil)
                window_ = window;
    }

    std::string title() override { return textOf(window_.title); }
    void close() override { [window_ performClose:nil]; }
    void zoomIn() override { perform(@selector(zoomIn:)); }
    void showActualSize() override { perform(@selector(actualSize:)); }
    void reload() override { perform(@selector(reload:)); }

    [[nodiscard]] WKWebView* engine() const { return engineIn(window_); }

  private:
    /// As for the key window: the first along the responder chain that can.
    void perform(SEL action) { [window_.firstResponder tryToPerform:action with:nil]; }

    backend::WebKitHost host_;
    NSWindow* window_ = nil;
};

class WebKitViewOnScreen final : public ViewOnScreen {
  public:
    WebKitViewOnScreen() {
        window_.open([this] { view_ = window_.host().makeWebView(); });
    }

    platform::WebView& view() override { return *view_; }
    std::string title() override { return textOf(window_.engine().title); }
    std::string address() override { return textOf(window_.engine().URL.absoluteString); }
    bool isLoading() override { return [window_.engine() isLoading]; }

    bool killPageProcess() override {
        // No header tells the process. Ended by its number, it ends as in a crash.
        NSString* const key = @"_webProcessIdentifier";
        if (![window_.engine() respondsToSelector:NSSelectorFromString(key)])
            return false;
        const int process = [[window_.engine() valueForKey:key] intValue];
        return process > 1 && ::kill(process, SIGKILL) == 0;
    }

  private:
    WebKitWindowOnScreen window_;
    std::unique_ptr<platform::WebView> view_;
};

} // namespace

std::unique_ptr<ViewOnScreen> makeViewOnScreen() { return std::make_unique<WebKitViewOnScreen>(); }

std::unique_ptr<WindowOnScreen> makeWindowOnScreen() { return std::make_unique<WebKitWindowOnScreen>(); }

const int kRefusedCertificateCode = NSURLErrorCancelled;

} // namespace lumora::contract
