#include "support/http_requests.h"

#include "support/url.h"
#include "support/url_errors.h"

#include <algorithm>
#include <future>
#include <memory>
#include <string_view>

namespace lumora {

namespace {

using platform::HttpRequest;

bool isHttp(std::string_view scheme) {
    std::string lower(scheme);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return lower == "http" || lower == "https";
}

bool isName(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char character) {
        return character > ' ' && character <= '~' && character != ':';
    });
}

bool isSound(const std::pair<std::string, std::string>& header) {
    return isName(header.first) &&
           header.second.find_first_of(std::string_view("\r\n\0", 3)) == std::string::npos;
}

} // namespace

std::optional<platform::Error> refusalOf(const HttpRequest& request) {
    if (!request.url)
        return urlError(UrlError::badUrl, request.url);
    if (!isHttp(urlScheme(*request.url)))
        return urlError(UrlError::unsupportedUrl, request.url);
    if (urlHost(*request.url).value_or("").empty())
        return urlError(UrlError::badUrl, request.url);
    if (!isName(request.method) || !std::all_of(request.headers.begin(), request.headers.end(), isSound))
        return urlError(UrlError::unknown, request.url);
    return std::nullopt;
}

platform::HttpAnswer sendAndWait(platform::HttpSessions& sessions, const HttpRequest& request) {
    platform::HttpSessionConfiguration configuration;
    configuration.kind = platform::HttpSessionKind::standard;
    const auto answer = std::make_shared<std::promise<platform::HttpAnswer>>();
    sessions.makeSession(configuration)->startDataTask(request, [answer](platform::HttpAnswer given) {
        answer->set_value(std::move(given));
    });
    return answer->get_future().get();
}

} // namespace lumora
