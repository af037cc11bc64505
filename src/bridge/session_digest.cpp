#include "bridge/native_message_handler.h"
#include "bridge/standard_defaults.h"
#include "config/session_details.h"

namespace lumora {

namespace {

constexpr const char* kSessionDigestKey = "RRSessionDigest";

} // namespace

void NativeMessageHandler::getRRSessionDigest() {
    const auto digest = standard_defaults::stringForKey(kSessionDigestKey).value_or("");
    SessionDetails::getInstance().setSessionDigest(digest);
    reply("window.receiveRRSessionDigest(\"" + digest + "\");"); // unescaped: the page knows its own digest
}

void NativeMessageHandler::sendRRSessionDigestToNative(const std::string& digest) {
    standard_defaults::store({{kSessionDigestKey, digest}});
}

void NativeMessageHandler::clearRRSessionDigest() { standard_defaults::clear(kSessionDigestKey); }

void NativeMessageHandler::clearLumoraDigest() { standard_defaults::clear("LumoraToken"); }

} // namespace lumora
