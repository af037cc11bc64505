#include "api/network_monitor.h"
#include "bridge/native_message_handler.h"
#include "support/log.h"

namespace lumora {

void NativeMessageHandler::lumoraLoaded() { NetworkMonitor::shared().stopMonitoring(); }

void NativeMessageHandler::consoleHandler(const std::string& text) {
    print("handleMessageFromWebView(message:) : Console Message from WebView: {}", text);
}

void NativeMessageHandler::getSystemOs() {
    reply(R"(window.receiveSystemOs("mac");)"); // on every system: the page offers what it offers on the Mac
}

} // namespace lumora
