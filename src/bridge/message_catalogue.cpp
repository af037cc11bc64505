#include "bridge/native_message_handler.h"

#include <array>

namespace lumora {

std::span<const NativeMessageHandler::Message> NativeMessageHandler::catalogue() {
    using Handler = NativeMessageHandler;
    static constexpr std::array kMessages{
        Message{"getRRSessionDigest", &Handler::getRRSessionDigest},
        Message{"sendRRSessionDigestToNative", &Handler::sendRRSessionDigestToNative},
        Message{"getCustomerDetails", &Handler::getCustomerDetails},
        Message{"sendCustomerDetailsToNative", JsonAction{&Handler::sendCustomerDetailsToNative}},
        Message{"getProxyDetails", &Handler::getProxyDetails},
        Message{"sendProxyDetailsToNative", JsonAction{&Handler::sendProxyDetailsToNative}},
        Message{"getActiveSessionKey", &Handler::getActiveSessionKey},
        Message{"lumoraLoaded", &Handler::lumoraLoaded},
        Message{"sendRRSessionKeyToNative", &Handler::sendRRSessionKeyToNative},
        Message{"sendJoinDetailsToNative", JsonAction{&Handler::sendJoinDetailsToNative}},
        Message{"clearRRSessionDigest", &Handler::clearRRSessionDigest},
        Message{"sendJoinReportAbuseLinkToNative", &Handler::sendJoinReportAbuseLinkToNative},
        Message{"sendLumoraTitleToNative", &Handler::sendLumoraTitleToNative},
        Message{"clearLumoraDigest", &Handler::clearLumoraDigest},
        Message{"clearActiveSessionKey", &Handler::clearActiveSessionKey},
        Message{"openProxy", &Handler::openProxy},
        Message{"consoleHandler", &Handler::consoleHandler},
        Message{"getSystemOs", &Handler::getSystemOs},
    };
    return kMessages;
}

std::vector<std::string> NativeMessageHandler::messageNames() {
    std::vector<std::string> names;
    for (const auto& message : catalogue())
        names.emplace_back(message.name);
    return names;
}

} // namespace lumora
