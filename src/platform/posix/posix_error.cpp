#include "platform/posix/posix_error.h"

#include <system_error>

namespace lumora::platform::posix_backend {

Error posixError(int number, const std::string& subject) {
    // std::strerror shares one buffer between threads; the category's message does not.
    return Error{"NSPOSIXErrorDomain", number, subject + ": " + std::generic_category().message(number), {}};
}

} // namespace lumora::platform::posix_backend
