#include "bridge/message_body.h"

#include <gtest/gtest.h>

#include <string>

namespace lumora {
namespace {

using namespace std::string_literals;

TEST(MessageBodies, ofWellFormedUtf8AreDecodable) {
    for (const auto& body : {""s, "{}"s, "a\0b"s, "é 漢 👩‍🚀"s, "\xF4\x8F\xBF\xBF"s})
        EXPECT_TRUE(isDecodable(body)) << body;
}

TEST(MessageBodies, withHalfASurrogatePairOrBrokenBytesAreNot) {
    for (const auto& body : {"\xED\xA0\x80"s, "{\xED\xBF\xBF}"s, "\xff"s, "a\x80"s, "\xC3"s, "\xC0\x80"s,
                             "\xF4\x90\x80\x80"s, "{}\xE2\x82"s})
        EXPECT_FALSE(isDecodable(body)) << body;
}

TEST(MessageBodies, asTextKeepWhatIsWellFormed) {
    for (const auto& body : {""s, "{}"s, "a\0b"s, "é 漢 👩‍🚀"s, "\xF4\x8F\xBF\xBF"s})
        EXPECT_EQ(wellFormed(body), body);
}

TEST(MessageBodies, asTextHaveOneReplacementForEachHalfAndEachStrayByte) {
    EXPECT_EQ(wellFormed("a\xED\xA0\xBD\xED\xBF\xBFz"), "a\uFFFD\uFFFDz");
    EXPECT_EQ(wellFormed("\xED\xA0"), "\uFFFD\uFFFD");
    EXPECT_EQ(wellFormed("\xFF\xC3"), "\uFFFD\uFFFD");
    EXPECT_EQ(wellFormed("\xED\x9F\xBF"), "\uD7FF");
}

} // namespace
} // namespace lumora
