#include "platform/linux/gui/load_watch.h"

namespace lumora::platform::linux_backend {

LoadWatch::LoadWatch(MainLoop& loop, WebKitWebView* view, TimedOut timedOut)
    : loop_(loop), timedOut_(std::move(timedOut)), viewSignals_(view) {
    viewSignals_.connect("notify::estimated-load-progress", &LoadWatch::progressChanged, this);
    viewSignals_.connect("resource-load-started", &LoadWatch::resourceStarted, this);
}

void LoadWatch::begin(const std::string& uri, std::chrono::seconds timeout) {
    end();
    uri_ = uri;
    target_.clear();
    timeout_ = timeout;
    startTimer();
}

void LoadWatch::progressed() {
    if (timer_ != nullptr)
        startTimer();
}

void LoadWatch::redirected(const std::string& uri) {
    target_ = uri;
    progressed();
}

void LoadWatch::end() {
    timer_.reset();
    pageSignals_.reset();
}

void LoadWatch::startTimer() {
    timer_ = loop_.scheduleTimer(timeout_, TimerMode::commonModes, [this] {
        const std::string late = uri_; // what follows may begin another load
        end();
        timedOut_(late);
    });
}

void LoadWatch::progressChanged(WebKitWebView*, GParamSpec*, gpointer self) {
    static_cast<LoadWatch*>(self)->progressed();
}

void LoadWatch::resourceStarted(WebKitWebView* view, WebKitWebResource* resource, WebKitURIRequest* request,
                                gpointer data) {
    auto* self = static_cast<LoadWatch*>(data);
    const std::string uri = textOf(webkit_uri_request_get_uri(request));
    const bool isPage =
        resource == webkit_web_view_get_main_resource(view) && (uri == self->uri_ || uri == self->target_);
    if (self->timer_ == nullptr || !isPage)
        return;
    self->pageSignals_.reset();
    self->page_ = ObjectRef<WebKitWebResource>::retain(resource);
    self->pageSignals_.emplace(resource);
    self->pageSignals_->connect("failed", &LoadWatch::pageFailed, data);
    self->pageSignals_->connect("finished", &LoadWatch::pageComplete, data);
}

// Not the end: whether the load has failed with it is for the view to say. The resource tells of its end nevertheless.
void LoadWatch::pageFailed(WebKitWebResource*, GError*, gpointer self) {
    static_cast<LoadWatch*>(self)->pageSignals_.reset();
}

void LoadWatch::pageComplete(WebKitWebResource*, gpointer self) { static_cast<LoadWatch*>(self)->end(); }

} // namespace lumora::platform::linux_backend
