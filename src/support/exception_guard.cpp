#include "support/exception_guard.h"

#include "platform/ports.h"
#include "platform/process_info.h"
#include "support/log.h"
#include "support/rendering.h"

namespace lumora {

std::string callStackText() { return render(platform::ports().processInfo->callStackSymbols()); }

void logException(std::string_view operation, const std::exception& exception) {
    log("{} : ************************ EXCEPTION ************************ \n Description :  {} // Call Stack "
        "Symbol : {}",
        operation, exception.what(), callStackText());
}

} // namespace lumora
