#include "platform/linux/gui/webkit_view.h"

#include "platform/linux/gui/cookies.h"
#include "platform/linux/gui/keyboard_focus.h"
#include "platform/linux/gui/load_errors.h"
#include "platform/linux/gui/page_requests.h"
#include "platform/linux/gui/reader_languages.h"

#include <utility>

namespace lumora::platform::linux_backend {

namespace {

/// Always: the engine's own error page would replace what the host shows next.
constexpr gboolean kHandled = TRUE;

std::string hostOf(const std::string& uri) {
    const std::unique_ptr<GUri, Release<g_uri_unref>> parsed(
        g_uri_parse(uri.c_str(), G_URI_FLAGS_NONE, nullptr));
    return parsed == nullptr ? uri : textOf(g_uri_get_host(parsed.get()));
}

/// The engine does not tell when a process that is to take over from another dies before its page stands.
constexpr std::chrono::seconds kLocalPageTimeout{20};

/// The address in the engine's own form: what its later reports compare with.
std::string addressOf(WebKitURIRequest* request) { return textOf(webkit_uri_request_get_uri(request)); }

std::string withoutFragment(const std::string& uri) { return uri.substr(0, uri.find('#')); }

/// The address of the page that begins to stand. As soon as the host asks for another load, the view tells that one's.
std::string committedAddress(WebKitWebView* view) {
    const std::string told = textOf(webkit_web_view_get_uri(view));
    WebKitWebResource* page = webkit_web_view_get_main_resource(view);
    const std::string loaded = page == nullptr ? told : textOf(webkit_web_resource_get_uri(page));
    return withoutFragment(loaded) == withoutFragment(told) ? told : loaded;
}

ObjectRef<WebKitURIRequest> requestFor(const std::string& url) {
    return ObjectRef<WebKitURIRequest>::adopt(webkit_uri_request_new(url.c_str()));
}

LoadTracker::FailureKind kindOf(const GError& error) {
    constexpr int kBlockedByContentFilter = 104; // the engine names no constant for it
    if (g_error_matches(&error, WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED))
        return LoadTracker::FailureKind::cancelled;
    if (g_error_matches(&error, WEBKIT_POLICY_ERROR,
                        WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE))
        return LoadTracker::FailureKind::interruptedByPolicy;
    if (g_error_matches(&error, WEBKIT_POLICY_ERROR, kBlockedByContentFilter))
        return LoadTracker::FailureKind::blockedByFilter;
    return LoadTracker::FailureKind::other;
}

ObjectRef<WebKitWebView> makeView() {
    const auto context = ObjectRef<WebKitWebContext>::adopt(webkit_web_context_new());
    speakReadersLanguages(context.get());
    auto view = ObjectRef<WebKitWebView>::retain(
        WEBKIT_WEB_VIEW(g_object_new(WEBKIT_TYPE_WEB_VIEW, "web-context", context.get(), nullptr)));
    keepCookies(view.get());
    keepFocusOffHiddenParts(view.get());
    applySettings(webkit_web_view_get_settings(view.get()));
    answerPageRequestsSilently(view.get());
    return view;
}

using ScriptCompletion = std::function<void(std::optional<Error>)>;

void scriptEnded(GObject* view, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<ScriptCompletion> completion(static_cast<ScriptCompletion*>(data));
    GError* failure = nullptr;
    const auto value = ObjectRef<JSCValue>::adopt(
        webkit_web_view_evaluate_javascript_finish(WEBKIT_WEB_VIEW(view), result, &failure));
    const ErrorPointer error(failure);
    (*completion)(error ? std::optional<Error>(scriptError(*error)) : std::nullopt);
}

} // namespace

WebKitView::WebKitView(MainLoop& loop, const std::string& deepLinkScheme)
    : view_(makeView()), messages_(webkit_web_view_get_user_content_manager(view_.get()),
                                   [this](const ScriptMessage& message) {
                                       if (delegate_ != nullptr)
                                           delegate_->didReceiveScriptMessage(message);
                                   }),
      announcement_(view_.get()), gate_(view_.get(), tracker_, deepLinkScheme, [this] { return delegate_; }),
      watch_(loop, view_.get(), [this](const std::string& uri) { timedOut(uri); }), signals_(view_.get()) {
    signals_.connect("load-changed", &WebKitView::loadChanged, this);
    signals_.connect("notify::is-loading", &WebKitView::loadingChanged, this);
    signals_.connect("load-failed", &WebKitView::loadFailed, this);
    signals_.connect("load-failed-with-tls-errors", &WebKitView::certificateRejected, this);
    signals_.connect("web-process-terminated", &WebKitView::processTerminated, this);
}

WebKitView::~WebKitView() = default;

void WebKitView::load(const PageRequest& request) {
    // Judged as the host wrote it: the engine lower-cases a host name, which the policy would not know again.
    if (gate_.judgeOwnLoad(request.url) == NavigationPolicy::cancel)
        return;
    const auto engineRequest = requestFor(request.url);
    const std::string uri = addressOf(engineRequest.get());
    startLoad(engineRequest.get());
    watch_.begin(uri, request.timeout);
}

void WebKitView::loadFile(const std::string& path, const std::string&) {
    const CharPointer fileUri(g_filename_to_uri(path.c_str(), nullptr, nullptr));
    if (!fileUri)
        return;
    const auto engineRequest = requestFor(fileUri.get());
    const std::string uri = addressOf(engineRequest.get());
    if (gate_.judgeOwnLoad(uri) == NavigationPolicy::cancel || tracker_.awaited() == uri)
        return;
    if (committed_ == uri) {
        if (!tracker_.pageIsComing()) // stopped now, it would stay half a page
            stopLoad();               // the page stays; what was to replace it does not come
        return;
    }
    startLoad(engineRequest.get());
    watch_.begin(uri, kLocalPageTimeout);
}

void WebKitView::startLoad(WebKitURIRequest* request) {
    tracker_.hostLoads(addressOf(request));
    webkit_web_view_load_request(view_.get(), request);
    askedProcess_ = webkit_web_view_get_page_id(view_.get());
}

void WebKitView::stopLoad() {
    watch_.end();
    if (tracker_.hostWithdraws() == LoadTracker::Withdrawal::stopEngine)
        webkit_web_view_stop_loading(view_.get());
}

void WebKitView::timedOut(const std::string& uri) {
    const bool stands = tracker_.awaited().empty();
    stopLoad();
    if (stands)
        reportFailure(timedOutError(uri));
    else
        reportProvisionalFailure(timedOutError(uri));
}

void WebKitView::evaluateJavaScript(const std::string& script, ScriptCompletion completion) {
    webkit_web_view_evaluate_javascript(view_.get(), script.data(), static_cast<gssize>(script.size()),
                                        nullptr, nullptr, nullptr, scriptEnded,
                                        new ScriptCompletion(std::move(completion)));
}

void WebKitView::loadChanged(WebKitWebView* view, WebKitLoadEvent event, gpointer data) {
    auto* self = static_cast<WebKitView*>(data);
    switch (event) {
    case WEBKIT_LOAD_STARTED:
        self->tracker_.started();
        break;
    case WEBKIT_LOAD_REDIRECTED:
        self->watch_.redirected(textOf(webkit_web_view_get_uri(view)));
        break;
    case WEBKIT_LOAD_COMMITTED:
        if (self->tracker_.awaited().empty())
            self->watch_.end(); // the page has gone on by itself
        self->tracker_.committed();
        self->askAgainWhatWasLost();
        self->pageStands(committedAddress(view));
        break;
    case WEBKIT_LOAD_FINISHED:
        self->tracker_.finished();
        break;
    }
}

// Of a place in the page that stands nothing else is told.
void WebKitView::loadingChanged(WebKitWebView* view, GParamSpec*, gpointer data) {
    auto* self = static_cast<WebKitView*>(data);
    const std::string uri = textOf(webkit_web_view_get_uri(view));
    if (webkit_web_view_is_loading(view) != FALSE || !self->tracker_.arrivedUnbegun(uri))
        return;
    self->watch_.end();
    self->committed_ = uri;
}

void WebKitView::pageStands(const std::string& uri) {
    const std::string before = std::exchange(committed_, uri);
    if (!gate_.committed(uri, before) || before.empty() || !tracker_.awaited().empty())
        return;
    // It stood by right, and needs no judgement now. Going back in the history would miss it when it was replaced there.
    const auto request = requestFor(before);
    startLoad(request.get());
    watch_.begin(before, PageRequest().timeout);
}

void WebKitView::askAgainWhatWasLost() {
    if (webkit_web_view_get_page_id(view_.get()) == askedProcess_)
        return;
    if (const std::string lost = tracker_.processChanged(); !lost.empty())
        startLoad(requestFor(lost).get());
}

gboolean WebKitView::loadFailed(WebKitWebView*, WebKitLoadEvent event, char* uri, GError* error,
                                gpointer data) {
    auto* self = static_cast<WebKitView*>(data);
    const std::string address = textOf(uri);
    auto kind = kindOf(*error);
    if (kind == LoadTracker::FailureKind::cancelled && event == WEBKIT_LOAD_COMMITTED &&
        self->gate_.letGoForFramesOnly())
        kind = LoadTracker::FailureKind::cancelledForFilter;
    if (!self->isPageFailure(kind, address))
        return kHandled;
    if (event == WEBKIT_LOAD_COMMITTED)
        self->reportFailure(loadError(*error, address));
    else
        self->reportProvisionalFailure(loadError(*error, address));
    return kHandled;
}

gboolean WebKitView::certificateRejected(WebKitWebView*, char* uri, GTlsCertificate*,
                                         GTlsCertificateFlags flags, gpointer data) {
    auto* self = static_cast<WebKitView*>(data);
    const std::string address = textOf(uri);
    if (!self->isPageFailure(LoadTracker::FailureKind::other, address))
        return kHandled;
    const std::string host = hostOf(address);
    if (self->delegate_ != nullptr)
        self->delegate_->didFailServerTrust(serverTrustError(flags, host));
    self->reportProvisionalFailure(untrustedServerError(flags, host, address));
    return kHandled;
}

bool WebKitView::isPageFailure(LoadTracker::FailureKind kind, const std::string& uri) {
    const bool wasAwaited = !tracker_.awaited().empty();
    const LoadTracker::Verdict verdict = tracker_.failed(kind, uri);
    const bool isPages = verdict == LoadTracker::Verdict::pageFailed;
    // One that the host awaits still goes on, and so does the page that stands when only what was to replace it is refused.
    if (tracker_.awaited().empty() && (wasAwaited || isPages))
        watch_.end();
    return isPages;
}

void WebKitView::processTerminated(WebKitWebView*, WebKitWebProcessTerminationReason, gpointer data) {
    auto* self = static_cast<WebKitView*>(data);
    const std::string lost = self->address();
    self->committed_.clear();
    self->watch_.end();
    self->tracker_.reset();
    if (self->delegate_ != nullptr)
        self->delegate_->webContentProcessDidTerminate(lost);
}

void WebKitView::reportProvisionalFailure(const Error& error) {
    if (delegate_ != nullptr)
        delegate_->didFailProvisionalNavigation(error);
}

void WebKitView::reportFailure(const Error& error) {
    if (delegate_ != nullptr)
        delegate_->didFailNavigation(error);
}

} // namespace lumora::platform::linux_backend
