#include "support/url_errors.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace lumora {

namespace {

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

} // namespace

platform::Error urlError(UrlError code, std::optional<std::string> failingUrl) {
    const auto* row = std::find_if(kDescriptions.begin(), kDescriptions.end(),
                                   [&](const auto& each) { return each.first == code; });
    const std::string_view description =
        row == kDescriptions.end() ? kDescriptions.front().second : row->second;
    return {"NSURLErrorDomain", static_cast<int>(code), std::string(description), std::move(failingUrl)};
}

} // namespace lumora
