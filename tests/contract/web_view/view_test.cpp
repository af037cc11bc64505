#include "view_test.h"

namespace lumora::platform::linux_backend::testing {

bool runUntil(const std::function<bool()>& condition, std::chrono::milliseconds deadline) {
    // Wakes the loop regularly: what changes the condition may be another thread.
    constexpr guint kLookAgainMilliseconds = 5;
    const SourcePointer pulse(g_timeout_source_new(kLookAgainMilliseconds));
    g_source_set_callback(
        pulse.get(), [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr, nullptr);
    g_source_attach(pulse.get(), nullptr);
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition() && std::chrono::steady_clock::now() < end)
        g_main_context_iteration(nullptr, TRUE);
    g_source_destroy(pulse.get());
    return condition();
}

void runFor(std::chrono::milliseconds time) {
    static_cast<void>(runUntil([] { return false; }, time));
}

void RecordingDelegate::didReceiveScriptMessage(const ScriptMessage& message) { messages.push_back(message); }

NavigationPolicy RecordingDelegate::decidePolicyFor(const NavigationAction& action) {
    asked.push_back(action);
    return policy ? policy(action) : NavigationPolicy::allow;
}

void RecordingDelegate::didFailProvisionalNavigation(const Error& error) {
    provisionalFailures.push_back(error);
    events.emplace_back("provisional");
    if (onFailure)
        onFailure();
}

void RecordingDelegate::didFailNavigation(const Error& error) {
    failures.push_back(error);
    events.emplace_back("committed");
    if (onFailure)
        onFailure();
}

void RecordingDelegate::createWebViewFor(const NavigationAction& action) {
    newWindows.push_back(action);
    if (onNewWindow)
        onNewWindow(action);
}

void RecordingDelegate::didFailServerTrust(const Error& error) {
    trustFailures.push_back(error);
    events.emplace_back("trust");
}

void RecordingDelegate::webContentProcessDidTerminate(const std::string& url) {
    lostPages.push_back(url);
    if (onLostPage)
        onLostPage();
}

ViewTest::ViewTest() : window_(gtk_window_new()) {
    view.setDelegate(&delegate);
    view.addScriptMessageHandler("value");
    gtk_window_set_child(GTK_WINDOW(window_), GTK_WIDGET(view.widget()));
    gtk_window_present(GTK_WINDOW(window_));
}

ViewTest::~ViewTest() {
    gtk_window_set_child(GTK_WINDOW(window_), nullptr);
    gtk_window_destroy(GTK_WINDOW(window_));
}

void ViewTest::load(const std::string& url, std::chrono::seconds timeout) {
    view.load({url, HttpCachePolicy::returnCacheDataElseLoad, timeout});
}

void ViewTest::show(const std::string& url) {
    load(url);
    ASSERT_TRUE(runUntil([&] {
        return webkit_web_view_is_loading(view.widget()) == FALSE &&
               url == textOf(webkit_web_view_get_uri(view.widget())) && !title().empty();
    })) << url;
}

std::string ViewTest::valueOf(const std::string& expression) {
    const std::size_t before = delegate.messages.size();
    run("webkit.messageHandlers.value.postMessage(String(" + expression + "))");
    if (!runUntil([&] { return delegate.messages.size() > before; }))
        return "no answer";
    std::string value = delegate.messages.back().stringBody.value_or("no string");
    delegate.messages.pop_back();
    return value;
}

void ViewTest::run(const std::string& script) {
    view.evaluateJavaScript(script, [](const std::optional<Error>&) {});
}

std::string ViewTest::title() const { return textOf(webkit_web_view_get_title(view.widget())); }

bool ViewTest::waitForTitle(const std::string& wanted) {
    return runUntil([&] { return title() == wanted; });
}

} // namespace lumora::platform::linux_backend::testing
