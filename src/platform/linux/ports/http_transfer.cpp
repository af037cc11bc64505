#include "platform/linux/ports/http_transfer.h"

#include <fmt/format.h>

#include <algorithm>
#include <new>
#include <utility>

namespace lumora::platform::linux_backend {

namespace {

constexpr const char* kProtocols = "http,https";
constexpr long kMaximumRedirects = 20;
constexpr long kBufferSize = 256L << 10;
constexpr std::chrono::seconds kDefaultTimeout{60};
constexpr long kFirstRedirectStatus = 300;
constexpr long kLastRedirectStatus = 399;

template <class Value>
void set(CURL* handle, CURLoption option, Value value) {
    curl_easy_setopt(handle, option, value); // fails only for options that this libcurl was built without
}

long numberOf(CURL* handle, CURLINFO information) {
    long value = 0;
    curl_easy_getinfo(handle, information, &value);
    return value;
}

std::string textOf(CURL* handle, CURLINFO information) {
    char* value = nullptr;
    curl_easy_getinfo(handle, information, &value);
    return value == nullptr ? std::string() : std::string(value);
}

} // namespace

HttpTransfer::HttpTransfer(HttpRequest request, const HttpSessionConfiguration& configuration,
                           BodyPlace place, const HttpTransferSettings& settings)
    : request_(std::move(request)), configuration_(configuration),
      maximumBodySize_(settings.maximumBodySize) {
    if (place == BodyPlace::file) {
        file_.emplace();
        if (!file_->isOpen()) {
            refusal_ = urlError(UrlError::cannotWriteToFile, request_.url);
            return;
        }
    }
    handle_.reset(curl_easy_init());
    if (!handle_) {
        refusal_ = urlError(UrlError::unknown, request_.url);
        return;
    }
    addHeaders();
    configure(settings);
}

void HttpTransfer::addHeaders() {
    for (const auto& [name, value] : request_.headers) {
        // A colon without a value would remove a header; the semicolon sends an empty one.
        const std::string line = value.empty() ? name + ";" : fmt::format("{}: {}", name, value);
        curl_slist* longer = curl_slist_append(headers_.get(), line.c_str());
        if (longer == nullptr)
            throw std::bad_alloc();
        static_cast<void>(headers_.release()); // the longer list is the same one
        headers_.reset(longer);
    }
}

void HttpTransfer::configure(const HttpTransferSettings& settings) {
    CURL* handle = handle_.get();
    set(handle, CURLOPT_URL, request_.url->c_str());
    set(handle, CURLOPT_PATH_AS_IS, 1L);
    set(handle, CURLOPT_PROTOCOLS_STR, kProtocols);
    set(handle, CURLOPT_REDIR_PROTOCOLS_STR, kProtocols);
    set(handle, CURLOPT_FOLLOWLOCATION, configuration_.redirects == HttpRedirects::follow ? 1L : 0L);
    set(handle, CURLOPT_MAXREDIRS, kMaximumRedirects);
    set(handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(handle, CURLOPT_ACCEPT_ENCODING, ""); // whatever this libcurl can decode
    set(handle, CURLOPT_HTTPHEADER, headers_.get());
    if (request_.method == "HEAD")
        set(handle, CURLOPT_NOBODY, 1L);
    else if (request_.method != "GET")
        set(handle, CURLOPT_CUSTOMREQUEST, request_.method.c_str());

    if (configuration_.minimumTls == TlsVersion::tls12)
        set(handle, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    if (settings.certificateAuthorities)
        set(handle, CURLOPT_CAINFO, settings.certificateAuthorities->c_str());

    // The time-outs are this class's own. libcurl's connection time-out, which it shares out among a host's addresses,
    // keeps one address that never answers from using up the time of the others.
    const auto patience = std::chrono::ceil<std::chrono::milliseconds>(deadline() - lastProgress_);
    set(handle, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(std::max<std::int64_t>(patience.count(), 1)));
    set(handle, CURLOPT_NOSIGNAL, 1L);
    set(handle, CURLOPT_QUICK_EXIT, 1L); // a name look-up that hangs does not hold the others
    set(handle, CURLOPT_TCP_KEEPALIVE, 1L);
    // A session's connections are its own, and sessions here send one request: what another one left open may lead to a
    // network that is no longer there, or past a certificate that this one has yet to judge.
    set(handle, CURLOPT_FORBID_REUSE, 1L);
    set(handle, CURLOPT_BUFFERSIZE, kBufferSize);
    set(handle, CURLOPT_WRITEFUNCTION, &HttpTransfer::receiveBody);
    set(handle, CURLOPT_WRITEDATA, static_cast<void*>(this));
    set(handle, CURLOPT_HEADERFUNCTION, &HttpTransfer::receiveHeader);
    set(handle, CURLOPT_HEADERDATA, static_cast<void*>(this));
    set(handle, CURLOPT_PRIVATE, static_cast<void*>(this));
}

std::size_t HttpTransfer::receiveBody(char* bytes, std::size_t size, std::size_t count, void* self) {
    auto& transfer = *static_cast<HttpTransfer*>(self);
    transfer.bytesReceived_ += size * count;
    return transfer.keep({bytes, size * count}) ? size * count : 0;
}

// Called with one line at a time: the status line, each header and the empty line at their end.
std::size_t HttpTransfer::receiveHeader(char* bytes, std::size_t size, std::size_t count, void* self) {
    auto& transfer = *static_cast<HttpTransfer*>(self);
    const std::string_view line(bytes, size * count);
    transfer.bytesReceived_ += line.size();
    if (line.starts_with("HTTP/"))
        transfer.isHeadComplete_ = false;
    else if (line == "\r\n" || line == "\n")
        transfer.isHeadComplete_ = true;
    return line.size();
}

// Called from within libcurl, through which no exception may pass.
bool HttpTransfer::keep(std::string_view bytes) {
    if (file_) {
        if (!file_->append(bytes))
            storingFault_ = UrlError::cannotWriteToFile;
        return !storingFault_;
    }
    try {
        if (bytes.size() > maximumBodySize_ - body_.size())
            storingFault_ = UrlError::dataLengthExceedsMaximum;
        else
            body_.append(bytes);
    } catch (const std::bad_alloc&) {
        storingFault_ = UrlError::dataLengthExceedsMaximum;
    }
    return !storingFault_;
}

void HttpTransfer::noteProgress(Clock::time_point now) {
    std::array<std::int64_t, 5> marks{static_cast<std::int64_t>(bytesReceived_), 0, 0, 0, 0};
    std::size_t mark = 1;
    for (const CURLINFO phase : {CURLINFO_NAMELOOKUP_TIME_T, CURLINFO_CONNECT_TIME_T,
                                 CURLINFO_APPCONNECT_TIME_T, CURLINFO_PRETRANSFER_TIME_T}) {
        curl_off_t time = 0;
        curl_easy_getinfo(handle_.get(), phase, &time);
        marks[mark++] = time;
    }
    if (marks != lastMarks_) {
        lastMarks_ = marks;
        lastProgress_ = now;
    }
}

Clock::time_point HttpTransfer::deadline() const {
    const auto timeout = request_.timeout > std::chrono::seconds::zero() ? request_.timeout : kDefaultTimeout;
    Clock::time_point first = lastProgress_ + timeout;
    if (configuration_.resourceTimeout)
        first = std::min(first, started_ + *configuration_.resourceTimeout);
    return first;
}

std::optional<std::string> HttpTransfer::failingUrl() const {
    if (handle_ && numberOf(handle_.get(), CURLINFO_REDIRECT_COUNT) > 0)
        return textOf(handle_.get(), CURLINFO_EFFECTIVE_URL);
    return request_.url;
}

std::optional<HttpResponse> HttpTransfer::response() const {
    const long status = numberOf(handle_.get(), CURLINFO_RESPONSE_CODE);
    if (status == 0)
        return std::nullopt;
    return HttpResponse{status, textOf(handle_.get(), CURLINFO_EFFECTIVE_URL)};
}

HttpOutcome HttpTransfer::finish(CURLcode result, const std::function<bool()>& hasNetworkPath) {
    if (storingFault_)
        return fail(*storingFault_);
    if (result != CURLE_OK) {
        TransferFault fault;
        fault.curlCode = static_cast<int>(result);
        fault.certificateResult = numberOf(handle_.get(), CURLINFO_SSL_VERIFYRESULT);
        fault.systemError = numberOf(handle_.get(), CURLINFO_OS_ERRNO);
        fault.hasNetworkPath = result != CURLE_COULDNT_RESOLVE_HOST || hasNetworkPath();
        return fail(urlErrorFor(fault));
    }
    // A head that the connection's end cuts short passes for one without a body.
    if (!isHeadComplete_)
        return fail(UrlError::networkConnectionLost);
    HttpOutcome outcome;
    outcome.response = response();
    if (file_)
        outcome.file.emplace(std::move(*file_));
    else
        outcome.body = std::move(body_);
    return outcome;
}

HttpOutcome HttpTransfer::fail(UrlError code) {
    HttpOutcome outcome;
    outcome.error = urlError(code, failingUrl());
    if (!handle_)
        return outcome;
    outcome.response = response();
    // After a redirect that led nowhere the redirect is all that was answered, and it is not the answer.
    const bool isRedirect = outcome.response && outcome.response->statusCode >= kFirstRedirectStatus &&
                            outcome.response->statusCode <= kLastRedirectStatus;
    if (isRedirect && configuration_.redirects == HttpRedirects::follow)
        outcome.response.reset();
    return outcome;
}

} // namespace lumora::platform::linux_backend
