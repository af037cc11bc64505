#include "platform/ports.h"

namespace lumora::platform {

Ports& ports() {
    static Ports instance;
    return instance;
}

} // namespace lumora::platform
