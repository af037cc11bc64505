#include "bridge/native_message_handler.h"
#include "bridge/records.h"
#include "bridge/standard_defaults.h"
#include "bridge/stored_values.h"
#include "support/log.h"
#include "support/rendering.h"

namespace lumora {

void NativeMessageHandler::getProxyDetails() {
    const StoredValues stored({"host", "port", "authRequired", "userName", "password"});
    const auto json = stored.serialize();
    if (!json)
        print("handleMessageFromWebView(message:) : Unable to convert dictionary to JSON: {}",
              render(json.error()));
    reply("window.receiveProxyDetails(" + (json ? json.value() : "") + ");");
}

void NativeMessageHandler::sendProxyDetailsToNative(const std::string& body) {
    const auto details = decode<proxyDetails>(body);
    if (!details) {
        // The customer details' words, without the colon: support staff know this form as the proxy's.
        print("handleMessageFromWebView(message:)Customer Details Not Initialized.");
        return;
    }
    standard_defaults::store({{"host", details->host},
                              {"port", details->port},
                              {"authRequired", details->authRequired},
                              {"userName", details->userName},
                              {"password", details->password}});
}

} // namespace lumora
