#include "bridge/native_message_handler.h"
#include "bridge/records.h"
#include "bridge/standard_defaults.h"
#include "bridge/stored_values.h"
#include "support/log.h"

namespace lumora {

void NativeMessageHandler::getCustomerDetails() {
    StoredValues stored({"name", "company", "email", "language"});
    if (stored.isAbsentOrEmptyText("language"))
        stored.replace("language", "en");
    const auto json = stored.serialize();
    // Without a JSON form the argument is empty: the page waits for an answer.
    reply("window.receiveCustomerDetails(" + (json ? json.value() : "") + ");");
}

void NativeMessageHandler::sendCustomerDetailsToNative(const std::string& body) {
    const auto details = decode<customerDetails>(body);
    if (!details) {
        print("handleMessageFromWebView(message:) : Customer Details Not Initialized.");
        return;
    }
    standard_defaults::store({{"name", details->name},
                              {"email", details->email},
                              {"company", details->company},
                              {"language", details->language}});
}

} // namespace lumora
