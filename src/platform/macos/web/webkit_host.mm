#include "platform/macos/web/webkit_host.h"

#include "platform/macos/foundation/text.h"
#include "platform/macos/web/webkit_view.h"
#include "support/exception_guard.h"
#include "webhost/page_zoom.h"
#include "webhost/window_title.h"

/// Its subviews fill it: they have no resizing rules of their own.
@interface LumoraContentView : NSView
@end

@implementation LumoraContentView
- (void)setFrameSize:(NSSize)size {
    [super setFrameSize:size];
    for (NSView* view in self.subviews)
        view.frame = self.bounds;
}
@end

/// Stands for the interface file's controller: a view with a web view in it, of which only the frame is used.
@interface LumoraViewController : NSViewController
@property(nonatomic) std::function<void()> didLoad;
@property(nonatomic) WKWebView* webView;
@end

@implementation LumoraViewController
- (void)loadView {
    self.view = [[LumoraContentView alloc] initWithFrame:NSMakeRect(0, 0, 1000, 800)];
    self.webView = [[WKWebView alloc] initWithFrame:self.view.bounds];
    [self.view addSubview:self.webView];
}

- (void)viewDidLoad {
    [super viewDidLoad];
    lumora::guarded(__func__, self.didLoad);
}

- (void)actualSize:(id)sender {
    [self zoomTo:1];
}

- (void)zoomIn:(id)sender {
    [self zoomTo:lumora::zoomedIn(self.zoom)];
}

- (void)zoomOut:(id)sender {
    [self zoomTo:lumora::zoomedOut(self.zoom)];
}

- (CGFloat)zoom {
    if (@available(macOS 11.0, *))
        return self.webView.pageZoom;
    return self.webView.magnification;
}

- (void)zoomTo:(CGFloat)zoom {
    if (@available(macOS 11.0, *))
        self.webView.pageZoom = zoom;
    else
        self.webView.magnification = zoom;
}
@end

namespace lumora::platform::macos_backend {

struct WebKitHost::Content final : Window {
    LumoraViewController* controller = [[LumoraViewController alloc] init];
    NSWindow* window = nil;

    std::string title() override { return textOf(window.title); }
    void setTitle(const std::string& title) override { window.title = nsString(title); }
};

WebKitHost::WebKitHost() : content_(std::make_unique<Content>()) {}

WebKitHost::~WebKitHost() = default;

std::unique_ptr<WebView> WebKitHost::makeWebView() {
    WKWebViewConfiguration* configuration = [[WKWebViewConfiguration alloc] init];
    configuration.userContentController = [[WKUserContentController alloc] init];
    configuration.websiteDataStore = [WKWebsiteDataStore defaultDataStore];
    LumoraViewController* controller = content_->controller;
    controller.webView = [[WKWebView alloc] initWithFrame:controller.webView.frame
                                            configuration:configuration];
    [controller.view addSubview:controller.webView]; // the first one stays beneath
    return portOver(controller.webView);
}

Window* WebKitHost::window() { return content_->window != nil ? content_.get() : nullptr; }

void WebKitHost::openWindow(std::function<void()> viewDidLoad) {
    content_->controller.didLoad = std::move(viewDidLoad);
    content_->window = [NSWindow windowWithContentViewController:content_->controller];
    content_->window.title = @(lumora::kFirstWindowTitle);
    content_->window.contentMinSize = NSMakeSize(360, 320);
    [content_->window center];
    [content_->window makeFirstResponder:content_->controller.webView];
    [content_->window makeKeyAndOrderFront:nil];
}

} // namespace lumora::platform::macos_backend
