#pragma once

#include "platform/http_session.h"
#include "platform/result.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace lumora::platform {

/// A main-frame load that the host asks for.
struct PageRequest {
    std::string url;
    HttpCachePolicy cachePolicy = HttpCachePolicy::useProtocolCachePolicy;
    std::chrono::seconds timeout{60}; ///< without anything coming of the page
};

/// What the page posted. Only string bodies are of use; any other type arrives without one.
struct ScriptMessage {
    std::string name;
    /// The exact text in UTF-8, NULs included. Half a surrogate pair, which a page's string may hold and UTF-8 may not,
    /// is three bytes as though it were a character.
    std::optional<std::string> stringBody;
};

enum class NavigationType { linkActivated, formSubmitted, backForward, reload, formResubmitted, other };
enum class NavigationPolicy { allow, cancel };

/// A navigation that the view asks about.
struct NavigationAction {
    NavigationType type = NavigationType::other;
    std::optional<std::string> url;
    bool sourceFrameIsMainFrame = false;
    bool hasTargetFrame = true; ///< false: a link or script asks for a new window
};

/// What the view asks of and tells its host. Main thread.
class WebViewDelegate {
  public:
    virtual ~WebViewDelegate() = default;

    /// A page, in whichever frame, has posted under a registered name.
    virtual void didReceiveScriptMessage(const ScriptMessage& message) = 0;

    /// Asked before anything of a navigation is loaded, the host's own loads included.
    virtual NavigationPolicy decidePolicyFor(const NavigationAction& action) = 0;

    /// The page's load failed before anything of it stood; the page before it still does.
    virtual void didFailProvisionalNavigation(const Error& error) = 0;

    /// The page's load failed when its beginning stood already.
    virtual void didFailNavigation(const Error& error) = 0;

    /// A page asks for a new window. None is made: the host loads what it wants to.
    virtual void createWebViewFor(const NavigationAction& action) = 0;

    /// The server's certificate failed the system's trust evaluation; the load is cancelled after this call and then
    /// reported as a failed provisional navigation.
    virtual void didFailServerTrust(const Error& error) = 0;

    /// The process that showed the page at this address, or was to show it, has died: the view is blank. No other report
    /// follows. The address is empty when there was no page.
    virtual void webContentProcessDidTerminate(const std::string& url) = 0;
};

/// The window's web view. Main thread only.
class WebView {
  public:
    virtual ~WebView() = default;

    /// Registers a name under which pages post messages to the delegate.
    virtual void addScriptMessageHandler(const std::string& name) = 0;

    /// A name that was never registered is no error.
    virtual void removeScriptMessageHandler(const std::string& name) = 0;

    /// Not owned; nullptr: nobody is asked or told.
    virtual void setDelegate(WebViewDelegate* delegate) = 0;

    /// Begins to load a page in place of what stands or is under way; a failure is told to the delegate.
    virtual void load(const PageRequest& request) = 0;

    /// Shows a local page that may read the folder it lies in. Nothing happens when that page already stands.
    virtual void loadFile(const std::string& path, const std::string& readAccessFolder) = 0;

    /// The address of the host's newest load that is not shown yet, or else of the page that stands; empty: neither.
    [[nodiscard]] virtual std::string address() = 0;

    /// Runs a script in the page; the completion gets the error, if any.
    virtual void evaluateJavaScript(const std::string& script,
                                    std::function<void(std::optional<Error>)> completion) = 0;
};

/// The window that hosts the view. Main thread only.
class Window {
  public:
    virtual ~Window() = default;
    [[nodiscard]] virtual std::string title() = 0;
    virtual void setTitle(const std::string& title) = 0;
};

/// Makes the one web view. `window()` is absent until the view stands in its window.
class WebViewHost {
  public:
    virtual ~WebViewHost() = default;
    [[nodiscard]] virtual std::unique_ptr<WebView> makeWebView() = 0;
    [[nodiscard]] virtual Window* window() = 0;
};

} // namespace lumora::platform
