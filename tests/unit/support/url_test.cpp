#include "support/url.h"

#include <gtest/gtest.h>

#include <string>

namespace lumora {
namespace {

using namespace std::string_view_literals;

TEST(UrlParsing, takesWellFormedAddressesAsTheyAre) {
    for (const char* text :
         {"https://com.ovratessel.example/join?lumora_token=a%20b", "HTTPS://Host/",
          "https://h:8443/p;x=1?q=/?#f", "https://[2001:db8::1]/", "https://(null)/api?agent=mac%2064",
          "https:///path", "https://h", "file:///a%2Fb", "mailto:casey@ovratessel.example", "ovrajoin:"})
        EXPECT_EQ(parseUrl(text), text) << text;
}

TEST(UrlParsing, takesReferencesWithoutAScheme) {
    for (const char* text :
         {"host.example/path", "/path", "//host/path", "?query", "#fragment", "a", "./a:b"})
        EXPECT_EQ(parseUrl(text), text) << text;
}

TEST(UrlParsing, refusesTheEmptyText) { EXPECT_EQ(parseUrl(""), std::nullopt); }

TEST(UrlParsing, refusesWhiteSpaceAndControlCharacters) {
    for (const auto text :
         {" https://h/"sv, "https://h/ "sv, "https://h/a b"sv, "https://h h/"sv, "https://h/\n"sv,
          "https://h/\t"sv, "https://h/\x7F"sv, "https://h/\x01"sv, "https://h/\0"sv, "\0"sv})
        EXPECT_EQ(parseUrl(text), std::nullopt) << text;
}

TEST(UrlParsing, refusesCharactersThatNoAddressMayHave) {
    for (const char* text : {"https://h/\"", "https://h/<a>", "https://h/a|b", "https://h/a\\b",
                             "https://h/^", "https://h/`", "https://h/{a}", "https://h/\u00E4",
                             "https://\u00E4.example/", "https://h/?a[0]=1", "https://h/#a#b"})
        EXPECT_EQ(parseUrl(text), std::nullopt) << text;
}

TEST(UrlParsing, refusesStrayPercentSigns) {
    for (const char* text : {"https://h/%", "https://h/%2", "https://h/%zz", "https://h/?t=100%"})
        EXPECT_EQ(parseUrl(text), std::nullopt) << text;
}

TEST(UrlParsing, refusesBrokenAuthoritiesAndSchemes) {
    for (const char* text : {"https://h:port/", "https://a:b:1/", "https://[::1", "https://[zz]/",
                             "https://[::1]x/", "://h/", ":h", "1x:y", "a_b:c"})
        EXPECT_EQ(parseUrl(text), std::nullopt) << text;
}

TEST(UrlScheme, isGivenAsWritten) {
    EXPECT_EQ(urlScheme("HtTps://h/"), "HtTps");
    EXPECT_EQ(urlScheme("ovrajoin:1"), "ovrajoin");
    EXPECT_EQ(urlScheme("a+b-c.d:x"), "a+b-c.d");
}

TEST(UrlScheme, isGivenForWhatDoesNotParseToo) {
    EXPECT_EQ(urlScheme("https://h/ "), "https");
    EXPECT_EQ(urlScheme("ovrajoin:a b|c"), "ovrajoin");
}

TEST(UrlScheme, isEmptyForReferences) {
    for (const char* text : {"", "h/path", "//h/path", "/a:b", "h?a:b", "h#a:b", "://h"})
        EXPECT_EQ(urlScheme(text), "") << text;
}

TEST(UrlHost, isGivenAsWritten) {
    EXPECT_EQ(urlHost("https://User@Host.Example:80/"), "Host.Example");
    EXPECT_EQ(urlHost("https://[2001:db8::1]/"), "2001:db8::1");
    EXPECT_EQ(urlHost("//h/path"), "h");
}

TEST(UrlHost, isEmptyOrAbsentWhereNoneIsNamed) {
    EXPECT_EQ(urlHost("https://:80/").value_or(""), "");
    EXPECT_EQ(urlHost("https:///path").value_or(""), "");
    for (const char* text : {"h/path", "mailto:a@h", "https://h h/"})
        EXPECT_EQ(urlHost(text), std::nullopt) << text;
}

TEST(PercentEncoding, keepsWhatAQueryMayCarry) {
    constexpr std::string_view kKept =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~!$&'()*+,;=:@/?";
    EXPECT_EQ(percentEncodeForQuery(kKept), kKept);
}

TEST(PercentEncoding, encodesEveryOtherByte) {
    EXPECT_EQ(percentEncodeForQuery(" \"#%<>[\\]^`{|}"), "%20%22%23%25%3C%3E%5B%5C%5D%5E%60%7B%7C%7D");
    EXPECT_EQ(percentEncodeForQuery("\u00E4\u20AC"), "%C3%A4%E2%82%AC");
    EXPECT_EQ(percentEncodeForQuery("\n\x7F\0"sv), "%0A%7F%00");
}

TEST(PercentEncoding, encodesAnEncodedTextAgain) { EXPECT_EQ(percentEncodeForQuery("%20"), "%2520"); }

TEST(PercentEncoding, makesEveryByteParse) {
    std::string everyByte;
    for (int byte = 0; byte < 256; ++byte)
        everyByte += static_cast<char>(byte);
    EXPECT_NE(parseUrl("https://h/?" + percentEncodeForQuery(everyByte)), std::nullopt);
}

} // namespace
} // namespace lumora
