#include "config/data_centre_log.h"
#include "config/data_centres.h"
#include "config/utils.h"
#include "support/exception_guard.h"

namespace lumora {

namespace {

constexpr const char* kFindWebserverName = "+[Utils findWebserverNameWithDCName:]";

} // namespace

std::string Utils::findWebserverNameWithDCName(const std::optional<std::string>& dcName) {
    try {
        logMissingDataCentreKey(kFindWebserverName, dcName);
        auto host = dataCentreHost(dcName.value_or(""));
        logDataCentreLookup(kFindWebserverName, dcName, host);
        if (!host) {
            host = developerHost(dcName);
            logDataCentreLookup(kFindWebserverName, dcName, host);
        }
        logDataCentreLookup(kFindWebserverName, dcName, host);
        return *host;
    } catch (const std::exception& exception) {
        logDataCentreException(kFindWebserverName, exception);
        return callStackText(); // no host, so that no address is ever made of a half-finished lookup
    }
}

} // namespace lumora
