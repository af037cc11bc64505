#include "config/session_details.h"

#include "platform/ports.h"
#include "support/shared_instance.h"

namespace lumora {

namespace {

SharedInstance<SessionDetails>& sharedInstance() {
    static auto* shared = new SharedInstance<SessionDetails>; // other threads may still read fields at exit
    return *shared;
}

} // namespace

SessionDetails& SessionDetails::getInstance() {
    return sharedInstance().get([] {
        auto details = std::make_unique<SessionDetails>();
        details->setDefaultOvraDirectoryManager(platform::ports().fileManager);
        return details;
    });
}

void SessionDetails::resetForTesting() { sharedInstance().resetForTesting(); }

} // namespace lumora
