#include "view_test.h"

#include "running_loop.h"

namespace lumora::contract {

bool runUntil(const std::function<bool()>& condition, std::chrono::milliseconds deadline) {
    static const std::unique_ptr<RunningLoop> loop = makeRunningLoop();
    return loop->runUntil(condition, deadline);
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

ViewTest::ViewTest() {
    view.setDelegate(&delegate);
    view.addScriptMessageHandler("value");
}

void ViewTest::load(const std::string& url, std::chrono::seconds timeout) {
    view.load({url, HttpCachePolicy::returnCacheDataElseLoad, timeout});
}

void ViewTest::show(const std::string& url) {
    load(url);
    ASSERT_TRUE(runUntil([&] {
        return !screen_->isLoading() && url == screen_->address() && !title().empty();
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

bool ViewTest::waitForTitle(const std::string& wanted) {
    return runUntil([&] { return title() == wanted; });
}

bool ViewTest::waitUntilLoaded() {
    return runUntil([this] { return !screen_->isLoading(); });
}

} // namespace lumora::contract
