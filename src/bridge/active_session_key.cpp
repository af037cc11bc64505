#include "bridge/native_message_handler.h"
#include "bridge/standard_defaults.h"
#include "support/log.h"

namespace lumora {

namespace {

constexpr const char* kActiveSessionKey = "activeSessionKey";

} // namespace

void NativeMessageHandler::getActiveSessionKey() {
    const auto key = standard_defaults::stringForKey(kActiveSessionKey);
    if (!key) {
        print("handleMessageFromWebView(message:) : No Session id is active.");
        return;
    }
    reply("window.receiveActiveSessionKey(\"" + *key + "\");");
}

void NativeMessageHandler::clearActiveSessionKey() { standard_defaults::clear(kActiveSessionKey); }

} // namespace lumora
