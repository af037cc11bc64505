#pragma once

#include "platform/result.h"

#include <optional>
#include <string>

namespace lumora {

/// The URL loading system's error codes that backends report by themselves.
enum class UrlError : int {
    unknown = -1,
    cancelled = -999,
    badUrl = -1000,
    timedOut = -1001,
    unsupportedUrl = -1002,
    cannotFindHost = -1003,
    cannotConnectToHost = -1004,
    networkConnectionLost = -1005,
    httpTooManyRedirects = -1007,
    notConnectedToInternet = -1009,
    badServerResponse = -1011,
    cannotDecodeContentData = -1016,
    dataLengthExceedsMaximum = -1103,
    secureConnectionFailed = -1200,
    serverCertificateHasBadDate = -1201,
    serverCertificateUntrusted = -1202,
    serverCertificateNotYetValid = -1204,
    cannotWriteToFile = -3003,
};

/// The error value with its sentence. @param failingUrl  the address that failed, where there is one
[[nodiscard]] platform::Error urlError(UrlError code, std::optional<std::string> failingUrl);

} // namespace lumora
