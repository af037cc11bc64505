#pragma once

#include "page_server.h"
#include "view_on_screen.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lumora::contract {

using namespace std::chrono_literals;
using platform::Error;
using platform::HttpCachePolicy;
using platform::NavigationAction;
using platform::NavigationPolicy;
using platform::NavigationType;
using platform::ScriptMessage;

/// Runs the main loop until the condition holds.
/// @return whether it did before the deadline.
[[nodiscard]] bool runUntil(const std::function<bool()>& condition, std::chrono::milliseconds deadline = 20s);

/// Runs the main loop for a while: only to see that something does not happen.
void runFor(std::chrono::milliseconds time);

/// Writes down what the view tells, and answers as the test wants.
class RecordingDelegate final : public platform::WebViewDelegate {
  public:
    std::vector<ScriptMessage> messages;
    std::vector<NavigationAction> asked;
    std::vector<NavigationAction> newWindows;
    std::vector<Error> provisionalFailures, failures, trustFailures;
    std::vector<std::string> events; ///< the failures' kinds, in order
    std::function<NavigationPolicy(const NavigationAction&)> policy;
    std::vector<std::string> lostPages; ///< of processes that died
    std::function<void()> onFailure;
    std::function<void()> onLostPage;
    std::function<void(const NavigationAction&)> onNewWindow;

    void didReceiveScriptMessage(const ScriptMessage& message) override;
    NavigationPolicy decidePolicyFor(const NavigationAction& action) override;
    void didFailProvisionalNavigation(const Error& error) override;
    void didFailNavigation(const Error& error) override;
    void createWebViewFor(const NavigationAction& action) override;
    void didFailServerTrust(const Error& error) override;
    void webContentProcessDidTerminate(const std::string& url) override;

    [[nodiscard]] std::size_t reportedFailures() const {
        return provisionalFailures.size() + failures.size();
    }
};

/// A load's time-out that only what stands still reaches: on a busy machine an engine's process may take seconds to begin.
constexpr auto kPatience = 6s;

/// A real web view, shown in a window of its own.
class ViewTest : public ::testing::Test {
  protected:
    ViewTest();

    RecordingDelegate delegate;

    /// Loads an address without judging how that ends.
    void load(const std::string& url, std::chrono::seconds timeout = 60s);

    /// Runs the main loop until the time of a load that has begun must have run out.
    static void outwaitPatience() { runFor(kPatience + 300ms); }

    /// Loads a page and waits until it stands.
    void show(const std::string& url);

    /// The text of a script's value, evaluated in the page.
    [[nodiscard]] std::string valueOf(const std::string& expression);

    void run(const std::string& script);

    [[nodiscard]] bool waitForTitle(const std::string& title);
    [[nodiscard]] bool waitUntilLoaded();
    [[nodiscard]] std::string title() const { return screen_->title(); }

    /// Of the page on the screen.
    [[nodiscard]] bool killProcess() { return screen_->killPageProcess(); }

  private:
    std::unique_ptr<ViewOnScreen> screen_ = makeViewOnScreen();

  protected:
    platform::WebView& view = screen_->view();
    PageServer server;
};

} // namespace lumora::contract
