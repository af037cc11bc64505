#include "platform/linux/gui/load_errors.h"

#include "platform/linux/glib_handles.h"

#include <fmt/format.h>
#include <webkit/webkit.h>

namespace lumora::platform::linux_backend {

namespace {

constexpr const char* kUrlDomain = "NSURLErrorDomain";
constexpr const char* kWebKitDomain = "WebKitErrorDomain";
constexpr const char* kViewDomain = "WKErrorDomain";
constexpr const char* kTrustDomain = "NSOSStatusErrorDomain";

constexpr int kTimedOut = -1001;
constexpr int kAnyCode = -1;
constexpr int kScriptExceptionOccurred = 4;

struct Counterpart {
    GQuark (*domain)();
    int engineCode; ///< or kAnyCode
    const char* targetDomain;
    int code;
    const char* description;
};

constexpr const char* kConnectionLost = "The network connection was lost.";
constexpr const char* kCannotConnect = "Could not connect to the server.";
constexpr const char* kOffline = "The Internet connection appears to be offline.";
constexpr const char* kTimedOutText = "The request timed out.";

const Counterpart kCounterparts[] = {
    {webkit_network_error_quark, WEBKIT_NETWORK_ERROR_CANCELLED, kUrlDomain, -999, "cancelled"},
    {webkit_network_error_quark, WEBKIT_NETWORK_ERROR_UNKNOWN_PROTOCOL, kUrlDomain, -1002, "unsupported URL"},
    {webkit_network_error_quark, WEBKIT_NETWORK_ERROR_FILE_DOES_NOT_EXIST, kUrlDomain, -1100,
     "The requested URL was not found on this server."},
    {webkit_policy_error_quark, WEBKIT_POLICY_ERROR_CANNOT_SHOW_URI, kUrlDomain, -1002, "unsupported URL"},
    {webkit_policy_error_quark, WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE, kWebKitDomain,
     102, "Frame load interrupted"},
    {g_resolver_error_quark, kAnyCode, kUrlDomain, -1003,
     "A server with the specified hostname could not be found."},
    {g_io_error_quark, G_IO_ERROR_TIMED_OUT, kUrlDomain, kTimedOut, kTimedOutText},
    {g_io_error_quark, G_IO_ERROR_CONNECTION_REFUSED, kUrlDomain, -1004, kCannotConnect},
    {g_io_error_quark, G_IO_ERROR_HOST_UNREACHABLE, kUrlDomain, -1004, kCannotConnect},
    {g_io_error_quark, G_IO_ERROR_NETWORK_UNREACHABLE, kUrlDomain, -1009, kOffline},
    {g_io_error_quark, G_IO_ERROR_PARTIAL_INPUT, kUrlDomain, -1005, kConnectionLost},
    {g_io_error_quark, G_IO_ERROR_BROKEN_PIPE, kUrlDomain, -1005, kConnectionLost},
    {g_tls_error_quark, kAnyCode, kUrlDomain, -1200,
     "An SSL error has occurred and a secure connection to the server cannot be made."},
};

struct CertificateFault {
    GTlsCertificateFlags flag;
    int trustCode; ///< of the trust evaluation
    int urlCode;   ///< of the load
    const char* trust;
    const char* load;
};

/// The worst first: a certificate may have several faults, and one is told.
constexpr CertificateFault kCertificateFaults[] = {
    {G_TLS_CERTIFICATE_UNKNOWN_CA, -67843, -1202, "“{}” certificate is not trusted",
     "The certificate for this server is invalid. You might be connecting to a server that is pretending to "
     "be “{}”, "
     "which could put your confidential information at risk."},
    {G_TLS_CERTIFICATE_BAD_IDENTITY, -67602, -1202, "“{}” certificate name does not match input",
     "The certificate for this server is invalid. You might be connecting to a server that is pretending to "
     "be “{}”, "
     "which could put your confidential information at risk."},
    {G_TLS_CERTIFICATE_EXPIRED, -67818, -1201, "“{}” certificate is expired",
     "The certificate for this server has expired. You might be connecting to a server that is pretending to "
     "be “{}”."},
    {G_TLS_CERTIFICATE_NOT_ACTIVATED, -67819, -1204, "“{}” certificate is not valid yet",
     "The certificate for this server is not yet valid. You might be connecting to a server that is "
     "pretending to be "
     "“{}”."},
    {G_TLS_CERTIFICATE_REVOKED, -67820, -1202, "“{}” certificate is revoked",
     "The certificate for this server was revoked. You might be connecting to a server that is pretending to "
     "be “{}”."},
};

/// A rejection of any other kind.
constexpr CertificateFault kAnyFault = {G_TLS_CERTIFICATE_GENERIC_ERROR, -67843, -1202,
                                        "“{}” certificate cannot be verified",
                                        "The certificate for this server is invalid. You might be connecting "
                                        "to a server that is pretending to be “{}”, "
                                        "which could put your confidential information at risk."};

const CertificateFault& faultOf(GTlsCertificateFlags flags) {
    for (const CertificateFault& fault : kCertificateFaults)
        if ((flags & fault.flag) != 0)
            return fault;
    return kAnyFault;
}

} // namespace

Error loadError(const GError& error, const std::string& failingUrl) {
    for (const Counterpart& row : kCounterparts)
        if (error.domain == row.domain() && (row.engineCode == kAnyCode || row.engineCode == error.code))
            return {row.targetDomain, row.code, row.description, failingUrl};
    return {textOf(g_quark_to_string(error.domain)), error.code, textOf(error.message), failingUrl};
}

Error timedOutError(const std::string& failingUrl) {
    return {kUrlDomain, kTimedOut, kTimedOutText, failingUrl};
}

Error serverTrustError(GTlsCertificateFlags flags, const std::string& host) {
    const CertificateFault& fault = faultOf(flags);
    return {kTrustDomain, fault.trustCode, fmt::format(fmt::runtime(fault.trust), host), std::nullopt};
}

Error untrustedServerError(GTlsCertificateFlags flags, const std::string& host,
                           const std::string& failingUrl) {
    const CertificateFault& fault = faultOf(flags);
    return {kUrlDomain, fault.urlCode, fmt::format(fmt::runtime(fault.load), host), failingUrl};
}

Error scriptError(const GError& error) {
    return {kViewDomain, kScriptExceptionOccurred, textOf(error.message), std::nullopt};
}

} // namespace lumora::platform::linux_backend
