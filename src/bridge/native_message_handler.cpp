#include "bridge/native_message_handler.h"

#include "bridge/message_body.h"
#include "platform/ports.h"
#include "support/shared_instance.h"

#include <algorithm>

namespace lumora {

namespace {

constexpr const char* kQueueLabel = "com.ovra.tessel.lumora.applicationDownloadAndInitiatingQueue";

SharedInstance<NativeMessageHandler>& sharedHandler() {
    static auto* holder = new SharedInstance<NativeMessageHandler>; // outlives everything, exit included
    return *holder;
}

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>; // clang deduces it by itself only from version 17 on

} // namespace

NativeMessageHandler& NativeMessageHandler::shared() {
    return sharedHandler().get([] { return std::make_unique<NativeMessageHandler>(nullptr); });
}

void NativeMessageHandler::resetForTesting() { sharedHandler().resetForTesting(); }

NativeMessageHandler::NativeMessageHandler(NativeMessageHandlerDelegate* delegate)
    : applicationDownloadAndInitiatingQueue_(platform::ports().mainLoop->makeSerialQueue(kQueueLabel)),
      delegate_(delegate) {}

void NativeMessageHandler::handleMessageFromWebView(const platform::ScriptMessage& message) {
    const auto messages = catalogue();
    const auto found = std::ranges::find(messages, message.name, &Message::name);
    if (found == messages.end())
        return;
    const auto act = Overloaded{
        [this](Action action) { (this->*action)(); },
        [this, &message](TextAction action) {
            if (message.stringBody)
                (this->*action)(wellFormed(*message.stringBody));
        },
        [this, &message](JsonAction action) {
            if (message.stringBody && isDecodable(*message.stringBody))
                (this->*action.decode)(*message.stringBody);
        },
        [this, &message](BodyAction action) {
            (this->*action)(message.stringBody ? std::optional(wellFormed(*message.stringBody))
                                               : std::nullopt);
        },
    };
    std::visit(act, found->action);
}

void NativeMessageHandler::reply(const std::string& script) {
    if (delegate_ != nullptr)
        delegate_->executeJavaScript(script);
}

} // namespace lumora
