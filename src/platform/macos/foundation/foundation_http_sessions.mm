#include "platform/macos/foundation/foundation_http_sessions.h"

#include "platform/macos/addresses.h"
#include "platform/macos/foundation/objc_exceptions.h"
#include "support/url.h"

#include <algorithm>
#include <atomic>
#include <future>

/// Lets no redirect be followed.
@interface LumoraRedirectStop : NSObject <NSURLSessionTaskDelegate>
@end

@implementation LumoraRedirectStop
- (void)URLSession:(NSURLSession*)session
                          task:(NSURLSessionTask*)task
    willPerformHTTPRedirection:(NSHTTPURLResponse*)response
                    newRequest:(NSURLRequest*)request
             completionHandler:(void (^)(NSURLRequest*))completionHandler {
    // Without a response it is no server's redirect: the system has put the request into its canonical form.
    completionHandler(response == nil ? request : nil);
}
@end

namespace lumora::platform::macos_backend {

namespace {

NSURLSession* sessionFrom(const HttpSessionConfiguration& configuration) {
    NSURLSessionConfiguration* settings = configuration.kind == HttpSessionKind::ephemeral
                                              ? NSURLSessionConfiguration.ephemeralSessionConfiguration
                                              : NSURLSessionConfiguration.defaultSessionConfiguration;
    if (configuration.minimumTls == TlsVersion::tls12)
        settings.TLSMinimumSupportedProtocolVersion = tls_protocol_version_TLSv12;
    if (configuration.resourceTimeout)
        settings.timeoutIntervalForResource =
            static_cast<NSTimeInterval>(configuration.resourceTimeout->count());
    settings.waitsForConnectivity = configuration.waitsForConnectivity;
    const bool stops = configuration.redirects == HttpRedirects::stop;
    return [NSURLSession sessionWithConfiguration:settings
                                         delegate:stops ? [[LumoraRedirectStop alloc] init] : nil
                                    delegateQueue:nil];
}

NSURLRequest* requestFrom(const HttpRequest& request) {
    NSMutableURLRequest* made =
        [NSMutableURLRequest requestWithURL:addressFrom(*request.url)
                                cachePolicy:request.cachePolicy == HttpCachePolicy::returnCacheDataElseLoad
                                                ? NSURLRequestReturnCacheDataElseLoad
                                                : NSURLRequestUseProtocolCachePolicy
                            timeoutInterval:static_cast<NSTimeInterval>(request.timeout.count())];
    made.HTTPMethod = nsString(request.method);
    for (const auto& [name, value] : request.headers)
        [made setValue:nsString(value) forHTTPHeaderField:nsString(name)];
    return made;
}

bool isName(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char character) {
        return character > ' ' && character <= '~' && character != ':';
    });
}

// Whether no text of the request's head reaches beyond its place.
bool isSound(const HttpRequest& request) {
    return isName(request.method) &&
           std::all_of(request.headers.begin(), request.headers.end(), [](const auto& header) {
               return isName(header.first) &&
                      header.second.find_first_of(std::string("\r\n\0", 3)) == std::string::npos;
           });
}

// Why the request is not even tried; absent when it is. A session by itself speaks more than the two schemes.
std::optional<Error> refusalOf(const HttpRequest& request, bool isSessionInvalid) {
    const auto refusal = [&](NSInteger code, const char* text) {
        return Error{textOf(NSURLErrorDomain), static_cast<int>(code), text, request.url};
    };
    if (!request.url)
        return refusal(NSURLErrorBadURL, "bad URL");
    NSURL* url = addressFrom(*request.url);
    if (![@[ @"http", @"https" ] containsObject:url.scheme.lowercaseString])
        return refusal(NSURLErrorUnsupportedURL, "unsupported URL");
    if (!parseUrl(*request.url) || url.host.length == 0)
        return refusal(NSURLErrorBadURL, "bad URL");
    if (!isSound(request))
        return refusal(NSURLErrorUnknown, "The request failed for an unknown reason.");
    if (isSessionInvalid)
        return refusal(NSURLErrorCancelled, "cancelled");
    return std::nullopt;
}

// How any task ended, but for its body.
template <class Answer> Answer answerFrom(NSURLResponse* response, NSError* error) {
    Answer answer;
    if ([response isKindOfClass:[NSHTTPURLResponse class]])
        answer.response = {[static_cast<NSHTTPURLResponse*>(response) statusCode],
                           textOf(response.URL.absoluteString)};
    if (error != nil)
        answer.error = errorOf(error);
    return answer;
}

// The session's queue belongs to the system: no exception may pass through it, and the core has logged what
// it had to.
template <class Completion, class Answer> void deliver(const Completion& completion, Answer answer) {
    try {
        atPort([&] { completion(std::move(answer)); });
    } catch (const std::exception& raised) {
        NSLog(@"a completion raised: %s", raised.what());
    }
}

class FoundationHttpSession final : public HttpSession {
  public:
    explicit FoundationHttpSession(NSURLSession* session) : session_(session) {}
    ~FoundationHttpSession() override { [session_ finishTasksAndInvalidate]; }
    FoundationHttpSession(const FoundationHttpSession&) = delete;
    FoundationHttpSession& operator=(const FoundationHttpSession&) = delete;

    // The lambdas copy what their blocks keep: of what a lambda refers to, a block keeps the reference.
    void startDataTask(HttpRequest request, HttpDataCompletion completion) override {
        start(request, completion, [&, completion] {
            return [session_ dataTaskWithRequest:requestFrom(request)
                               completionHandler:^(NSData* data, NSURLResponse* response, NSError* error) {
                                   auto answer = answerFrom<HttpAnswer>(response, error);
                                   if (error == nil)
                                       answer.body.emplace(static_cast<const char*>(data.bytes), data.length);
                                   deliver(completion, std::move(answer));
                               }];
        });
    }

    void startDownloadTask(HttpRequest request, HttpDownloadCompletion completion) override {
        start(request, completion, [&, completion] {
            return [session_ downloadTaskWithRequest:requestFrom(request)
                                   completionHandler:^(NSURL* file, NSURLResponse* response, NSError* error) {
                                       auto answer = answerFrom<HttpDownload>(response, error);
                                       if (error == nil)
                                           answer.temporaryFile = textOf(file.path);
                                       deliver(completion, std::move(answer));
                                   }];
        });
    }

    void finishTasksAndInvalidate() override {
        invalid_ = true;
        [session_ finishTasksAndInvalidate];
    }

  private:
    template <class Answer, class MakeTask>
    void start(const HttpRequest& request, std::function<void(Answer)> completion, const MakeTask& makeTask) {
        atPort([&, completion] {
            Answer refused;
            refused.error = refusalOf(request, invalid_);
            if (!refused.error)
                return [makeTask() resume];
            [session_.delegateQueue addOperationWithBlock:^{
                deliver(completion, refused);
            }];
        });
    }

    NSURLSession* const session_;
    std::atomic<bool> invalid_ = false; // a task of an invalidated session would raise
};

} // namespace

std::shared_ptr<HttpSession>
FoundationHttpSessions::makeSession(const HttpSessionConfiguration& configuration) {
    return atPort([&] { return std::make_shared<FoundationHttpSession>(sessionFrom(configuration)); });
}

HttpAnswer FoundationHttpSessions::sendSynchronously(const HttpRequest& request) {
    std::promise<HttpAnswer> answer;
    HttpSessionConfiguration configuration;
    configuration.kind = HttpSessionKind::standard;
    const auto session = makeSession(configuration);
    session->startDataTask(request, [&answer](HttpAnswer given) { answer.set_value(std::move(given)); });
    return answer.get_future().get();
}

} // namespace lumora::platform::macos_backend
