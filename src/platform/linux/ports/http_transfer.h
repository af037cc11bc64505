#pragma once

#include "platform/http_session.h"
#include "platform/linux/ports/temporary_file.h"
#include "platform/linux/ports/transfer_fault.h"

#include <curl/curl.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace lumora::platform::linux_backend {

using Clock = std::chrono::steady_clock;

enum class BodyPlace { memory, file };

/// How a transfer ended. `file` and `body` are absent after an error.
struct HttpOutcome {
    std::optional<std::string> body;
    std::optional<TemporaryFile> file;
    std::optional<HttpResponse> response;
    std::optional<Error> error;
};

/// What the process's transfers have in common.
struct HttpTransferSettings {
    std::optional<std::string> certificateAuthorities; ///< a PEM file; absent: the system's trust store
    std::size_t maximumBodySize = 64U << 20U;          ///< of a body that is kept in memory
};

/// One request on its way, which has been found sound: a handle of libcurl, the place of the body, and the clocks of both time-outs.
/// Used by one thread at a time.
class HttpTransfer {
  public:
    HttpTransfer(HttpRequest request, const HttpSessionConfiguration& configuration, BodyPlace place,
                 const HttpTransferSettings& settings);
    ~HttpTransfer() = default;
    HttpTransfer(const HttpTransfer&) = delete;
    HttpTransfer& operator=(const HttpTransfer&) = delete;

    /// Why the request cannot even be tried; absent when it can.
    [[nodiscard]] const std::optional<Error>& refusal() const { return refusal_; }

    [[nodiscard]] bool waitsForConnectivity() const { return configuration_.waitsForConnectivity; }

    [[nodiscard]] CURL* handle() const { return handle_.get(); }

    /// Notes what has come since the last call. The time-out counts from there.
    void noteProgress(Clock::time_point now);

    /// When the first of the time-outs ends the transfer, unless it progresses.
    [[nodiscard]] Clock::time_point deadline() const;

    /// The outcomes. Each takes the body with it; called once, last.
    /// @param hasNetworkPath  asked only when the answer makes a difference
    [[nodiscard]] HttpOutcome finish(CURLcode result, const std::function<bool()>& hasNetworkPath);
    [[nodiscard]] HttpOutcome fail(UrlError code);

  private:
    struct FreeHandle {
        void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    };
    struct FreeList {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    static std::size_t receiveBody(char* bytes, std::size_t size, std::size_t count, void* self);
    static std::size_t receiveHeader(char* bytes, std::size_t size, std::size_t count, void* self);

    void configure(const HttpTransferSettings& settings);
    void addHeaders();
    [[nodiscard]] bool keep(std::string_view bytes);
    [[nodiscard]] std::optional<std::string> failingUrl() const;
    [[nodiscard]] std::optional<HttpResponse> response() const;

    const HttpRequest request_;
    const HttpSessionConfiguration configuration_;
    const std::size_t maximumBodySize_;
    std::optional<Error> refusal_;

    std::unique_ptr<curl_slist, FreeList> headers_;
    std::unique_ptr<CURL, FreeHandle> handle_; ///< after the headers: libcurl uses them to its end

    bool isHeadComplete_ = false;
    std::string body_;
    std::optional<TemporaryFile> file_;
    std::optional<UrlError> storingFault_;

    const Clock::time_point started_ = Clock::now();
    Clock::time_point lastProgress_ = started_;
    std::uint64_t bytesReceived_ = 0;
    std::array<std::int64_t, 5> lastMarks_{}; ///< bytes received and the ends of the connection's phases
};

} // namespace lumora::platform::linux_backend
