#pragma once

#include "platform/result.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumora::platform {

/// How a request treats the HTTP cache. A backend without a cache (the Linux one) has nothing to honour.
enum class HttpCachePolicy { useProtocolCachePolicy, returnCacheDataElseLoad };

/// One HTTP request. Only http and https are ever spoken; any other scheme, or none, is an unsupported URL.
struct HttpRequest {
    std::optional<std::string> url; ///< absent when the address did not parse: the request fails as a bad URL
    std::string method = "GET";
    std::vector<std::pair<std::string, std::string>> headers;
    std::chrono::seconds timeout{60}; ///< inactivity: counts again from every progress, connecting included
    HttpCachePolicy cachePolicy = HttpCachePolicy::useProtocolCachePolicy;
};

/// The one status that counts as success.
inline constexpr long kHttpOk = 200;

/// The head of a server's answer.
struct HttpResponse {
    long statusCode = 0;
    std::string url; ///< the final address, after redirects
};

/// How a data task ended. Exactly one of `body` and `error` is set; `response` may accompany either.
struct HttpAnswer {
    std::optional<std::string> body;
    std::optional<HttpResponse> response;
    std::optional<Error> error;
};

/// How a download ended. The file is the callee's to read during the callback only; it is deleted afterwards.
/// A body of no bytes is a file too. The status code is not judged here.
struct HttpDownload {
    std::optional<std::string> temporaryFile;
    std::optional<HttpResponse> response;
    std::optional<Error> error;
};

enum class HttpSessionKind {
    ephemeral, ///< nothing is kept on disk: no cookies, cache or credentials
    standard,  ///< the platform's default, with its shared cache where it has one
};

enum class TlsVersion { tls12 };

/// What a redirect's answer leads to: a request to where it points, or the task's end with that answer.
enum class HttpRedirects { follow, stop };

/// What the tasks of one session have in common.
struct HttpSessionConfiguration {
    HttpSessionKind kind = HttpSessionKind::ephemeral;
    std::optional<TlsVersion> minimumTls;                ///< absent: the platform's default
    std::optional<std::chrono::seconds> resourceTimeout; ///< total for one task; absent: none

    /// Without a network path wait for one, until a time-out ends the task.
    bool waitsForConnectivity = false;
    HttpRedirects redirects = HttpRedirects::follow;
};

using HttpDataCompletion = std::function<void(HttpAnswer)>;
using HttpDownloadCompletion = std::function<void(HttpDownload)>;

/// One session. Start from any thread; completions run, one after the other, on the session's own thread.
/// A started task outlives the last reference to its session.
class HttpSession {
  public:
    virtual ~HttpSession() = default;

    /// Both send the request and return at once. The completion is called exactly once, also when the request fails
    /// before anything is sent.
    virtual void startDataTask(HttpRequest request, HttpDataCompletion completion) = 0;
    virtual void startDownloadTask(HttpRequest request, HttpDownloadCompletion completion) = 0;

    /// No further tasks; those under way run to their end.
    virtual void finishTasksAndInvalidate() = 0;
};

/// Makes sessions. Callable from any thread.
class HttpSessions {
  public:
    virtual ~HttpSessions() = default;

    [[nodiscard]] virtual std::shared_ptr<HttpSession>
    makeSession(const HttpSessionConfiguration& configuration) = 0;

    /// Sends and blocks the calling thread until the answer or its time-out.
    [[nodiscard]] virtual HttpAnswer sendSynchronously(const HttpRequest& request) = 0;
};

} // namespace lumora::platform
