#pragma once

#include "support/url_errors.h"

namespace lumora::platform::linux_backend {

/// What a failed transfer's own library tells about it.
struct TransferFault {
    int curlCode = 0;           ///< CURLcode
    long certificateResult = 0; ///< OpenSSL's verification result
    long systemError = 0;       ///< errno of the last connection attempt
    bool hasNetworkPath = true;
};

/// The URL loading system's code for it.
[[nodiscard]] UrlError urlErrorFor(const TransferFault& fault);

} // namespace lumora::platform::linux_backend
