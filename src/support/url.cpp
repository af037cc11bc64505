#include "support/url.h"

#include <uriparser/Uri.h>

namespace lumora {

namespace {

/// A parsed address; its members point into the text that it was made of.
class ParsedUri {
  public:
    explicit ParsedUri(std::string_view text) {
        const char* errorPosition = nullptr;
        valid_ = uriParseSingleUriExA(&uri_, text.data(), text.data() + text.size(), &errorPosition) ==
                 URI_SUCCESS;
    }
    ~ParsedUri() {
        if (valid_)
            uriFreeUriMembersA(&uri_);
    }
    ParsedUri(const ParsedUri&) = delete;
    ParsedUri& operator=(const ParsedUri&) = delete;

    [[nodiscard]] bool valid() const { return valid_; }

    [[nodiscard]] std::optional<std::string> host() const { return textOf(uri_.hostText); }

  private:
    [[nodiscard]] std::optional<std::string> textOf(const UriTextRangeA& part) const {
        if (!valid_ || part.first == nullptr)
            return std::nullopt;
        return std::string(part.first, part.afterLast);
    }

    UriUriA uri_{};
    bool valid_ = false;
};

} // namespace

std::optional<std::string> parseUrl(std::string_view text) {
    // The platform makes no URL of the empty string, though the grammar has it as a reference.
    if (text.empty() || !ParsedUri(text).valid())
        return std::nullopt;
    return std::string(text);
}

std::string_view urlScheme(std::string_view url) {
    const auto end = url.find_first_of(":/?#");
    return end != std::string_view::npos && url[end] == ':' ? url.substr(0, end) : std::string_view();
}

std::optional<std::string> urlHost(std::string_view url) { return ParsedUri(url).host(); }

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
