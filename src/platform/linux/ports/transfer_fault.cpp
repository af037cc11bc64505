#include "platform/linux/ports/transfer_fault.h"

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace lumora::platform::linux_backend {

namespace {

// OpenSSL's X509_V_ERR_... numbers, which libcurl hands through.
constexpr long kCertificateNotYetValid = 9;
constexpr long kCertificateHasExpired = 10;

constexpr std::array<std::pair<CURLcode, UrlError>, 23> kCodes{{
    {CURLE_UNSUPPORTED_PROTOCOL, UrlError::unsupportedUrl},
    {CURLE_URL_MALFORMAT, UrlError::badUrl},
    {CURLE_COULDNT_RESOLVE_PROXY, UrlError::cannotFindHost},
    {CURLE_COULDNT_RESOLVE_HOST, UrlError::cannotFindHost},
    {CURLE_COULDNT_CONNECT, UrlError::cannotConnectToHost},
    {CURLE_PROXY, UrlError::cannotConnectToHost},
    {CURLE_OPERATION_TIMEDOUT, UrlError::timedOut},
    {CURLE_PARTIAL_FILE, UrlError::networkConnectionLost},
    {CURLE_GOT_NOTHING, UrlError::networkConnectionLost},
    {CURLE_SEND_ERROR, UrlError::networkConnectionLost},
    {CURLE_RECV_ERROR, UrlError::networkConnectionLost},
    {CURLE_TOO_MANY_REDIRECTS, UrlError::httpTooManyRedirects},
    {CURLE_WEIRD_SERVER_REPLY, UrlError::badServerResponse},
    {CURLE_BAD_CONTENT_ENCODING, UrlError::cannotDecodeContentData},
    {CURLE_SSL_CONNECT_ERROR, UrlError::secureConnectionFailed},
    {CURLE_SSL_ENGINE_NOTFOUND, UrlError::secureConnectionFailed},
    {CURLE_SSL_ENGINE_SETFAILED, UrlError::secureConnectionFailed},
    {CURLE_SSL_CERTPROBLEM, UrlError::secureConnectionFailed},
    {CURLE_SSL_CIPHER, UrlError::secureConnectionFailed},
    {CURLE_SSL_CACERT_BADFILE, UrlError::secureConnectionFailed},
    {CURLE_SSL_SHUTDOWN_FAILED, UrlError::networkConnectionLost},
    {CURLE_PEER_FAILED_VERIFICATION, UrlError::serverCertificateUntrusted},
    {CURLE_CHUNK_FAILED, UrlError::badServerResponse},
}};

} // namespace

UrlError urlErrorFor(const TransferFault& fault) {
    const auto* row = std::find_if(kCodes.begin(), kCodes.end(),
                                   [&](const auto& each) { return each.first == fault.curlCode; });
    const UrlError code = row == kCodes.end() ? UrlError::unknown : row->second;
    if (code == UrlError::serverCertificateUntrusted && fault.certificateResult == kCertificateHasExpired)
        return UrlError::serverCertificateHasBadDate;
    if (code == UrlError::serverCertificateUntrusted && fault.certificateResult == kCertificateNotYetValid)
        return UrlError::serverCertificateNotYetValid;
    if (code == UrlError::cannotFindHost && !fault.hasNetworkPath)
        return UrlError::notConnectedToInternet;
    if (code == UrlError::cannotConnectToHost &&
        (fault.systemError == ENETUNREACH || fault.systemError == ENETDOWN))
        return UrlError::notConnectedToInternet;
    return code;
}

} // namespace lumora::platform::linux_backend
