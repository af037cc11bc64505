#include "config/data_centre_log.h"

#include "support/exception_guard.h"
#include "support/log.h"
#include "support/rendering.h"

namespace lumora {

void logMissingDataCentreKey(const char* operation, const std::optional<std::string>& key) {
    if (!key || key->empty())
        log("{} : *** DcName is nil or empty.", operation);
}

void logDataCentreLookup(const char* operation, const std::optional<std::string>& key,
                         const std::optional<std::string>& host) {
    log("{}  Dc = {} , WebServerName = {}", operation, render(key), render(host));
}

void logDataCentreException(const char* operation, const std::exception& exception) {
    log("************ EXCEPTION ************ {} : {} : {}", operation, exception.what(), callStackText());
}

} // namespace lumora
