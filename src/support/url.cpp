#include "support/url.h"

#include <uriparser/Uri.h>

#include <memory>

namespace lumora {

namespace {

struct UriMembersDeleter {
    void operator()(UriUriA* uri) const { uriFreeUriMembersA(uri); }
};

} // namespace

std::optional<std::string> parseUrl(std::string_view text) {
    if (text.empty())
        return std::nullopt; // the platform makes no URL of the empty string
    UriUriA uri{};
    const char* errorPosition = nullptr;
    const int status = uriParseSingleUriExA(&uri, text.data(), text.data() + text.size(), &errorPosition);
    if (status != URI_SUCCESS)
        return std::nullopt;
    const std::unique_ptr<UriUriA, UriMembersDeleter> members(&uri);
    return std::string(text);
}

std::optional<std::string> urlScheme(std::string_view url) {
    UriUriA uri{};
    const char* errorPosition = nullptr;
    if (uriParseSingleUriExA(&uri, url.data(), url.data() + url.size(), &errorPosition) != URI_SUCCESS)
        return std::nullopt;
    const std::unique_ptr<UriUriA, UriMembersDeleter> members(&uri);
    if (uri.scheme.first == nullptr)
        return std::nullopt;
    return std::string(uri.scheme.first, uri.scheme.afterLast);
}

std::string percentEncodeForQuery(std::string_view text) {
    constexpr std::string_view kAllowed = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"
                                          "-._~!$&'()*+,;=:@/?";
    constexpr std::string_view kHex = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(text.size());
    for (const char character : text) {
        if (kAllowed.find(character) != std::string_view::npos) {
            encoded += character;
            continue;
        }
        const auto byte = static_cast<unsigned char>(character);
        encoded += '%';
        encoded += kHex[byte >> 4U];
        encoded += kHex[byte & 15U];
    }
    return encoded;
}

} // namespace lumora
