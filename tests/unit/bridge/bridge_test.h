#pragma once

#include "bridge/native_message_handler.h"
#include "fakes/core_test.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lumora {

/// What the bridge asks of its page and window, in order: "script TEXT", "title TEXT".
class RecordingDelegate final : public NativeMessageHandlerDelegate {
  public:
    std::vector<std::string> journal;
    std::function<void()> onCall = [] {};

    void executeJavaScript(const std::string& script) override {
        onCall();
        journal.push_back("script " + script);
    }
    void updateWindowTitle(const std::string& title) override {
        onCall();
        journal.push_back("title " + title);
    }
};

/// A bridge with a page behind it.
class BridgeTest : public CoreTest {
  protected:
    using Lines = std::vector<std::string>;

    BridgeTest() { handler.setNativeMessageHandlerDelegate(&page); }

    void post(const std::string& name, std::optional<std::string> body = std::nullopt) {
        handler.handleMessageFromWebView({name, std::move(body)});
    }

    /// A value that JSON, and a string, cannot carry.
    static platform::PropertyListValue data() { return platform::PropertyListData{{1, 2, 3}}; }

    RecordingDelegate page;
    NativeMessageHandler handler{nullptr};
};

} // namespace lumora
