#include "agent/ovra_app_upgrader.h"
#include "api/api_handler.h"
#include "bridge/native_message_handler.h"
#include "bridge/records.h"
#include "bridge/standard_defaults.h"
#include "config/session_details.h"
#include "support/characters.h"
#include "support/log.h"

namespace lumora {

namespace {

enum class FailedCheck { isLogged, isSilent };

/// The only check that a key gets: its length, in characters as the customer sees them.
bool isValidSessionKey(const std::string& key) {
    const auto length = countCharacters(key);
    return length >= 9 && length <= 10;
}

void takeServerFor(const std::optional<std::string>& dc) {
    if (dc) { // even an empty name is looked up
        ApiHandler::getInstance().findServerNameUsingDC(dc);
        return;
    }
    auto& session = SessionDetails::getInstance();
    session.setDcName(session.plistDcName());
    session.setWebServerName(session.plistWebServerName());
}

/// Asks for the agent's update and hands over to the agent. The answer arrives on the HTTP session's thread, under the
/// check's own guard; every answer hands over by itself, also when joins overlap.
void startAgent(FailedCheck failedCheck) {
    ApiHandler::getInstance().checkOvraTesselUpdate([failedCheck](bool succeeded) {
        if (succeeded)
            OvraAppUpgrader::getInstance().ovraAppUpdater();
        else if (failedCheck == FailedCheck::isLogged)
            print("handleMessageFromWebView(message:) : Unable to update Ovra Tessel Agent");
    });
}

} // namespace

void NativeMessageHandler::sendJoinDetailsToNative(const std::string& body) {
    const auto details = decode<joinSessionMessage>(body);
    if (!details) {
        // The doubled name is how this line is known and searched for.
        print("handleMessageFromWebView(message:) : handleMessageFromWebView(message:) : Error Unable to "
              "decode the join details");
        return;
    }
    // Before the check: the page finds a refused key again and shows it.
    standard_defaults::store({{"activeSessionKey", details->sessionKey}});
    const auto key = std::to_string(details->sessionKey);
    print("handleMessageFromWebView(message:) : Details Shared for Joining a session - email: {}, "
          "sessionid: {}",
          details->email, key);
    if (!isValidSessionKey(key)) {
        print("handleMessageFromWebView(message:) : Invalid Session Key from Join Page");
        return;
    }
    setupProxyDetails();
    auto& session = SessionDetails::getInstance();
    session.setSessionKey(key);
    session.setName(details->email); // the join-details file carries it on as the e-mail
    takeServerFor(details->dc);
    startAgent(FailedCheck::isLogged);
}

void NativeMessageHandler::sendRRSessionKeyToNative(const std::string& sessionKey) {
    if (!isValidSessionKey(sessionKey)) {
        print("handleMessageFromWebView(message:) : Invalid Session Key from Raise a Request Page");
        return;
    }
    setupProxyDetails();
    auto& session = SessionDetails::getInstance();
    session.setSessionKey(sessionKey);
    if (const auto name = standard_defaults::stringForKey("name"))
        session.setName(name);
    startAgent(FailedCheck::isSilent);
}

} // namespace lumora
