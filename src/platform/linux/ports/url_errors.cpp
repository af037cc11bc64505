#include "platform/linux/ports/url_errors.h"

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <utility>

namespace lumora::platform::linux_backend {

namespace {

// OpenSSL's X509_V_ERR_... numbers, which libcurl hands through.
constexpr long kCertificateNotYetValid = 9;
constexpr long kCertificateHasExpired = 10;

constexpr std::array<std::pair<UrlError, std::string_view>, 18> kDescriptions{{
    {UrlError::unknown, "The request failed for an unknown reason."},
    {UrlError::cancelled, "The request was cancelled."},
    {UrlError::badUrl, "bad URL"},
    {UrlError::timedOut, "The request timed out."},
    {UrlError::unsupportedUrl, "unsupported URL"},
    {UrlError::cannotFindHost, "A server with the specified hostname could not be found."},
    {UrlError::cannotConnectToHost, "Could not connect to the server."},
    {UrlError::networkConnectionLost, "The network connection was lost."},
    {UrlError::httpTooManyRedirects, "There were too many HTTP redirects."},
    {UrlError::notConnectedToInternet, "The Internet connection appears to be offline."},
    {UrlError::badServerResponse, "The server's response is not a valid one."},
    {UrlError::cannotDecodeContentData, "The server's response could not be decoded."},
    {UrlError::dataLengthExceedsMaximum, "The server's response is too large."},
    {UrlError::secureConnectionFailed,
     "An SSL error has occurred and a secure connection to the server cannot be made."},
    {UrlError::serverCertificateHasBadDate, "The certificate for this server has expired."},
    {UrlError::serverCertificateUntrusted, "The certificate for this server is invalid."},
    {UrlError::serverCertificateNotYetValid, "The certificate for this server is not yet valid."},
    {UrlError::cannotWriteToFile, "The downloaded data could not be written to a file."},
}};

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

template <class Table, class Key>
auto lookUp(const Table& table, Key key, decltype(table.front().second) otherwise) {
    const auto entry =
        std::find_if(table.begin(), table.end(), [&](const auto& row) { return row.first == key; });
    return entry == table.end() ? otherwise : entry->second;
}

} // namespace

Error urlError(UrlError code, std::optional<std::string> failingUrl) {
    return Error{"NSURLErrorDomain", static_cast<int>(code),
                 std::string(lookUp(kDescriptions, code, kDescriptions.front().second)),
                 std::move(failingUrl)};
}

UrlError urlErrorFor(const TransferFault& fault) {
    const UrlError code = lookUp(kCodes, static_cast<CURLcode>(fault.curlCode), UrlError::unknown);
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
