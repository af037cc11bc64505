#pragma once

#include "platform/main_loop.h"
#include "platform/web_view.h"

#include <memory>
#include <string>

namespace lumora {

/// Serves the page on the bridge's behalf. Main thread.
class NativeMessageHandlerDelegate {
  public:
    virtual ~NativeMessageHandlerDelegate() = default;
    virtual void
    executeJavaScript(const std::string& script) = 0; ///< a complete script; its result is ignored
    virtual void updateWindowTitle(const std::string& title) = 0; ///< nothing happens without a window
};

/// Receives every script message of the join page, acts on it at once and answers with one line of script. It keeps
/// nothing between messages: its state lives in the preferences and in SessionDetails. Main thread.
class NativeMessageHandler {
  public:
    [[nodiscard]] static NativeMessageHandler& shared();
    static void resetForTesting();

    explicit NativeMessageHandler(NativeMessageHandlerDelegate* delegate);

    void handleMessageFromWebView(const platform::ScriptMessage& message);

    /// Copies the stored proxy settings into the agent's connection-settings file.
    void setupProxyDetails();

    [[nodiscard]] NativeMessageHandlerDelegate* nativeMessageHandlerDelegate() const { return delegate_; }
    void setNativeMessageHandlerDelegate(NativeMessageHandlerDelegate* delegate) { delegate_ = delegate; }

  private:
    // implemented in joins.cpp
    void joinFromJoinPage(const platform::ScriptMessage& message);
    void joinFromRequestPage(const platform::ScriptMessage& message);

    void reply(const std::string& script);

    std::unique_ptr<platform::SerialQueue> applicationDownloadAndInitiatingQueue_; ///< deliberately idle
    NativeMessageHandlerDelegate* delegate_;
};

} // namespace lumora
