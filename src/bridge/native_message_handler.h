#pragma once

#include "platform/main_loop.h"
#include "platform/web_view.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace lumora {

/// Serves the page on the bridge's behalf. Main thread.
class NativeMessageHandlerDelegate {
  public:
    virtual ~NativeMessageHandlerDelegate() = default;

    /// Runs a complete script in the page; its result is ignored.
    virtual void executeJavaScript(const std::string& script) = 0;

    /// Titles the window that shows the page; nothing happens without one.
    virtual void updateWindowTitle(const std::string& title) = 0;
};

/// Receives every script message of the join page, acts on it at once and answers with one line of script. It keeps
/// nothing between messages: its state lives in the preferences and in SessionDetails. Main thread.
///
/// message_catalogue.cpp is the list of all messages; each subject has a source file of its own.
class NativeMessageHandler {
  public:
    /// The single instance, made on first use without a delegate. Any thread may be the first.
    [[nodiscard]] static NativeMessageHandler& shared();
    static void resetForTesting();

    /// The names under which pages post, in the order in which they are registered.
    [[nodiscard]] static std::vector<std::string> messageNames();

    /// @param delegate not owned; without one the replies are dropped and everything else happens.
    explicit NativeMessageHandler(NativeMessageHandlerDelegate* delegate);

    /// Looks the name up, exactly as written, and acts. Unknown names and bodies of the wrong kind are ignored.
    void handleMessageFromWebView(const platform::ScriptMessage& message);

    /// Copies the stored proxy settings into the agent's connection-settings file.
    void setupProxyDetails();

    [[nodiscard]] NativeMessageHandlerDelegate* nativeMessageHandlerDelegate() const { return delegate_; }
    void setNativeMessageHandlerDelegate(NativeMessageHandlerDelegate* delegate) { delegate_ = delegate; }

  private:
    // What a message's body must be shows in its action's signature.
    using Action = void (NativeMessageHandler::*)();                            ///< the body is not looked at
    using TextAction = void (NativeMessageHandler::*)(const std::string& text); ///< anything else is ignored
    /// JSON text: a string without bytes to decode is ignored as well.
    struct JsonAction {
        TextAction decode;
    };
    using BodyAction =
        void (NativeMessageHandler::*)(const std::optional<std::string>& text); ///< absent: not a string

    struct Message {
        std::string_view name;
        std::variant<Action, TextAction, JsonAction, BodyAction> action;
    };

    [[nodiscard]] static std::span<const Message> catalogue();

    // session_digest.cpp
    void getRRSessionDigest();
    void sendRRSessionDigestToNative(const std::string& digest);
    void clearRRSessionDigest();
    void clearLumoraDigest();

    // customer_details.cpp
    void getCustomerDetails();
    void sendCustomerDetailsToNative(const std::string& body);

    // proxy_details.cpp
    void getProxyDetails();
    void sendProxyDetailsToNative(const std::string& body);

    // active_session_key.cpp
    void getActiveSessionKey();
    void clearActiveSessionKey();

    // page_lifecycle.cpp
    void lumoraLoaded();
    void consoleHandler(const std::string& text);
    void getSystemOs();

    // joins.cpp
    void sendRRSessionKeyToNative(const std::string& sessionKey);
    void sendJoinDetailsToNative(const std::string& body);

    // external_links.cpp
    void sendJoinReportAbuseLinkToNative(const std::string& link);

    // window_title_message.cpp
    void sendLumoraTitleToNative(const std::optional<std::string>& title);

    // system_proxy_pane.cpp
    void openProxy();

    void reply(const std::string& script);

    std::unique_ptr<platform::SerialQueue> applicationDownloadAndInitiatingQueue_; ///< deliberately idle
    NativeMessageHandlerDelegate* delegate_;
};

} // namespace lumora
