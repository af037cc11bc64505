#pragma once

#include "platform/linux/glib_handles.h"

#include <webkit/webkit.h>

namespace lumora::platform::linux_backend {

/// Tells assistive technology what the view shows. The engine keeps a tree of the page for it, but this toolkit cannot
/// hang that into the window's own, where a screen reader would find an empty box. So the view itself is announced: by
/// the page's title, and with what the application's own pages say, the moment they appear or change. Main thread.
class PageAnnouncement {
  public:
    /// Before the view is shown. The view outlives this.
    explicit PageAnnouncement(WebKitWebView* view);
    ~PageAnnouncement();
    PageAnnouncement(const PageAnnouncement&) = delete;
    PageAnnouncement& operator=(const PageAnnouncement&) = delete;

  private:
    static void titleChanged(WebKitWebView* view, GParamSpec* property, gpointer self);
    static void loadChanged(WebKitWebView* view, WebKitLoadEvent event, gpointer self);
    static void ownPageSpoke(WebKitUserContentManager* manager, JSCValue* said, gpointer self);

    void name(const std::string& title);
    void describe(const std::string& text);

    WebKitWebView* view_;
    WebKitUserContentManager* manager_;
    std::string name_;
    std::string description_;
    SignalConnections viewSignals_;
    SignalConnections managerSignals_;
};

} // namespace lumora::platform::linux_backend
