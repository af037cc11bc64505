#include "platform/macos/foundation/foundation_http_sessions.h"

#include "platform/macos/addresses.h"
#include "platform/macos/foundation/objc_exceptions.h"
#include "support/checked_http_session.h"
#include "support/http_requests.h"

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

class FoundationHttpSession final : public CheckedHttpSession {
  public:
    explicit FoundationHttpSession(NSURLSession* session) : session_(session) {}
    ~FoundationHttpSession() override { [session_ finishTasksAndInvalidate]; }
    FoundationHttpSession(const FoundationHttpSession&) = delete;
    FoundationHttpSession& operator=(const FoundationHttpSession&) = delete;

  private:
    // The lambdas copy what their blocks keep: of what a lambda refers to, a block keeps the reference.
    void sendForData(const HttpRequest& request, HttpDataCompletion completion) override {
        atPort([&, completion] {
            [[session_ dataTaskWithRequest:requestFrom(request)
                         completionHandler:^(NSData* data, NSURLResponse* response, NSError* error) {
                             auto answer = answerFrom<HttpAnswer>(response, error);
                             if (error == nil)
                                 answer.body = bytesOf(data);
                             completion(std::move(answer));
                         }] resume];
        });
    }

    void sendForDownload(const HttpRequest& request, HttpDownloadCompletion completion) override {
        atPort([&, completion] {
            [[session_ downloadTaskWithRequest:requestFrom(request)
                             completionHandler:^(NSURL* file, NSURLResponse* response, NSError* error) {
                                 auto answer = answerFrom<HttpDownload>(response, error);
                                 if (error == nil)
                                     answer.temporaryFile = textOf(file.path);
                                 completion(std::move(answer));
                             }] resume];
        });
    }

    void endWhenIdle() override { [session_ finishTasksAndInvalidate]; }

    void onOwnThread(std::function<void()> work) override {
        [queue_ addOperationWithBlock:^{
            work();
        }];
    }

    NSURLSession* const session_;
    NSOperationQueue* const queue_ =
        session_.delegateQueue; // kept: it is asked for after the session's end too
};

} // namespace

std::shared_ptr<HttpSession>
FoundationHttpSessions::makeSession(const HttpSessionConfiguration& configuration) {
    return atPort([&] { return std::make_shared<FoundationHttpSession>(sessionFrom(configuration)); });
}

HttpAnswer FoundationHttpSessions::sendSynchronously(const HttpRequest& request) {
    return sendAndWait(*this, request);
}

} // namespace lumora::platform::macos_backend
