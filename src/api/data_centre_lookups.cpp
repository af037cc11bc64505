#include "api/api_handler.h"
#include "config/data_centre_log.h"
#include "config/data_centres.h"
#include "config/session_details.h"
#include "support/characters.h"
#include "support/exception_guard.h"

namespace lumora {

namespace {

constexpr const char* kFindServerName = "-[ApiHandler findServerNameUsingDC:]";
constexpr const char* kFindDcName = "-[ApiHandler findDcNameUsingKey:]";

constexpr std::size_t kDigitIndex = 3;

/// The data centre that a session key's shape tells, if any.
std::optional<std::string> dataCentreOfSessionKey(std::string_view key) {
    switch (countCharacters(key)) {
    case 9:
        return "com";
    case 10: {
        const auto fourth = characterAt(key, kDigitIndex);
        return fourth.size() == 1 ? dataCentreForDigit(fourth.front()) : std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

} // namespace

void ApiHandler::findServerNameUsingDC(const std::optional<std::string>& dcName) {
    try {
        logMissingDataCentreKey(kFindServerName, dcName);
        auto host = dataCentreHost(dcName.value_or(""));
        if (!host)
            host = developerHost(dcName);
        logDataCentreLookup(kFindServerName, dcName, host);
        auto& session = SessionDetails::getInstance();
        session.setDcName(dcName);
        session.setWebServerName(host);
    } catch (const std::exception& exception) {
        logDataCentreException(kFindServerName, exception);
    }
}

void ApiHandler::findDcNameUsingKey(const std::string& key) {
    guarded(kFindDcName, [&key] {
        const auto dcName = dataCentreOfSessionKey(key);
        if (!dcName)
            return;
        auto& session = SessionDetails::getInstance();
        session.setDcName(dcName);
        session.setWebServerName(dataCentreHost(*dcName));
    });
}

} // namespace lumora
