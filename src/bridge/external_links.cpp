#include "bridge/native_message_handler.h"
#include "platform/ports.h"
#include "platform/workspace.h"
#include "support/log.h"
#include "support/url.h"

namespace lumora {

void NativeMessageHandler::sendJoinReportAbuseLinkToNative(const std::string& link) {
    const auto url = parseUrl(link);
    if (!url)
        return;
    if (platform::ports().workspace->openUrl(*url)) {
        // Support staff search for the line in this form, without a colon behind the operation.
        print("handleMessageFromWebView(message:) Opened Report Abuse Page in the Default browser");
    }
}

} // namespace lumora
