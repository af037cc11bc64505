#pragma once

#include "platform/linux/gui/load_tracker.h"
#include "platform/linux/gui/load_watch.h"
#include "platform/linux/gui/navigation_gate.h"
#include "platform/linux/gui/page_announcement.h"
#include "platform/linux/gui/script_messages.h"
#include "platform/main_loop.h"
#include "platform/web_view.h"

#include <webkit/webkit.h>

#include <string>

namespace lumora::platform::linux_backend {

/// The web view on WebKitGTK. The widget may be placed in a window at any time after its making; it lives as long as
/// this object, also after its window has closed. Main thread.
class WebKitView final : public WebView {
  public:
    /// @param deepLinkScheme  the scheme of links that are handed to the operating system
    WebKitView(MainLoop& loop, const std::string& deepLinkScheme);
    ~WebKitView() override;
    WebKitView(const WebKitView&) = delete;
    WebKitView& operator=(const WebKitView&) = delete;

    void addScriptMessageHandler(const std::string& name) override { messages_.add(name); }
    void removeScriptMessageHandler(const std::string& name) override { messages_.remove(name); }
    void setDelegate(WebViewDelegate* delegate) override { delegate_ = delegate; }
    void load(const PageRequest& request) override;
    void loadFile(const std::string& path, const std::string& readAccessFolder) override;
    [[nodiscard]] std::string address() override {
        return tracker_.awaited().empty() ? committed_ : tracker_.awaited();
    }
    void evaluateJavaScript(const std::string& script,
                            std::function<void(std::optional<Error>)> completion) override;

    [[nodiscard]] WebKitWebView* widget() const { return view_.get(); }

  private:
    static void loadChanged(WebKitWebView* view, WebKitLoadEvent event, gpointer self);
    static void loadingChanged(WebKitWebView* view, GParamSpec* property, gpointer self);
    static gboolean loadFailed(WebKitWebView* view, WebKitLoadEvent event, char* uri, GError* error,
                               gpointer self);
    static gboolean certificateRejected(WebKitWebView* view, char* uri, GTlsCertificate* certificate,
                                        GTlsCertificateFlags flags, gpointer self);
    static void processTerminated(WebKitWebView* view, WebKitWebProcessTerminationReason reason,
                                  gpointer self);

    void pageStands(const std::string& uri);
    void askAgainWhatWasLost();
    void startLoad(WebKitURIRequest* request);
    void stopLoad();
    void timedOut(const std::string& uri);
    [[nodiscard]] bool isPageFailure(LoadTracker::FailureKind kind, const std::string& uri);
    void reportProvisionalFailure(const Error& error);
    void reportFailure(const Error& error);

    ObjectRef<WebKitWebView> view_;
    WebViewDelegate* delegate_ = nullptr;
    LoadTracker tracker_;
    ScriptMessages messages_;
    PageAnnouncement announcement_;
    NavigationGate gate_;
    LoadWatch watch_;
    SignalConnections signals_;
    guint64 askedProcess_ = 0; ///< by the engine's name for the page in it: the newest load was asked of it
    std::string committed_;    ///< the address of the page that stands; empty: none
};

} // namespace lumora::platform::linux_backend
